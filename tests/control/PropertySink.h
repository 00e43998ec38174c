#pragma once

// A listener to changes of a control's properties. It lives on the stack of its test: counting does
// nothing.

#include "com/ComPtr.h"

#include <functional>
#include <ocidl.h>
#include <vector>

namespace corvina::test {

class PropertySink : public IPropertyNotifySink {
public:
    std::vector<DISPID> received;
    std::function<void()> handler;
    bool allows = true;
    int asked = 0;

    ~PropertySink() { disconnect(); }
    HRESULT connect(const ComPtr<IConnectionPoint>& point) {
        point_ = point;
        return point_->Advise(this, &cookie_);
    }
    void disconnect() {
        if (point_)
            point_->Unadvise(cookie_);
        point_.reset();
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown || iid == IID_IPropertyNotifySink ? this : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID id) override {
        received.push_back(id);
        if (handler)
            handler();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override {
        ++asked;
        return allows ? S_OK : S_FALSE;
    }

private:
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

} // namespace corvina::test
