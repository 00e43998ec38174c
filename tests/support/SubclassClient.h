#pragma once

// A client of the subclassing that returns what a test sets. It is a member or local of the test:
// its references are only counted.

#include <functional>
#include <windows.h>

#include "Corvina.h"

namespace corvina::test {

class SubclassClient : public ISubclass {
public:
    using Handler = std::function<long(HWND, UINT, WPARAM, LPARAM)>;

    SubclassClient() = default;
    explicit SubclassClient(Handler handler, EMsgResponse how = emrPreprocess)
        : handle(std::move(handler)), response(how) {}
    SubclassClient(const SubclassClient&) = delete;
    SubclassClient& operator=(const SubclassClient&) = delete;
    virtual ~SubclassClient() = default;

    Handler handle;
    EMsgResponse response = emrPreprocess;
    HRESULT status = S_OK; // what both members return
    int references = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE get_MsgResponse(EMsgResponse* result) override {
        if (SUCCEEDED(status))
            *result = response;
        return status;
    }
    HRESULT STDMETHODCALLTYPE put_MsgResponse(EMsgResponse) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE WindowProc(long hWnd, long iMsg, long wParam, long lParam,
                                         long* result) override {
        const long returned = handle
                                ? handle(reinterpret_cast<HWND>(hWnd), static_cast<UINT>(iMsg),
                                         static_cast<WPARAM>(wParam), static_cast<LPARAM>(lParam))
                                : 0;
        if (SUCCEEDED(status))
            *result = returned;
        return status;
    }
};

} // namespace corvina::test
