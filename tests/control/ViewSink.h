#pragma once

// A container's listener to a control's picture. It lives on the stack of its test: counting does
// nothing.

#include <objidl.h>
#include <windows.h>

namespace corvina::test {

class ViewSink final : public IAdviseSink {
public:
    int views = 0;
    int data = 0;
    int closed = 0;
    // Of the last calls.
    DWORD aspect = 0;
    LONG index = 0;
    DWORD medium = TYMED_NULL;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown || iid == IID_IAdviseSink ? this : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    void STDMETHODCALLTYPE OnDataChange(FORMATETC*, STGMEDIUM* given) override {
        ++data;
        medium = given->tymed;
    }
    void STDMETHODCALLTYPE OnViewChange(DWORD changed, LONG at) override {
        ++views;
        aspect = changed;
        index = at;
    }
    void STDMETHODCALLTYPE OnRename(IMoniker*) override {}
    void STDMETHODCALLTYPE OnSave() override {}
    void STDMETHODCALLTYPE OnClose() override { ++closed; }
};

} // namespace corvina::test
