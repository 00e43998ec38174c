#pragma once

// A listener of a container that calls the control back from within each report.

#include "com/Implements.h"

#include <functional>
#include <ocidl.h>
#include <string>

namespace corvina::test {

// Notes that a callback has come, by its name.
using Callback = std::function<void(const std::string& name)>;

// Listens to what the control reports of its picture, its data, its properties and its life.
class ReenteringListener final : public Implements<IAdviseSink, IPropertyNotifySink> {
public:
    explicit ReenteringListener(Callback callback) : callback_(std::move(callback)) {}

    ULONG references() { return AddRef(), Release(); }

    // Registers itself for everything that the control reports.
    void listenTo(IOleObject& control) {
        DWORD cookie = 0;
        control.Advise(this, &cookie);
        const ComPtr<IOleObject> object(&control);
        if (const auto view = object.query<IViewObject>())
            view->SetAdvise(DVASPECT_CONTENT, 0, this);
        if (const auto data = object.query<IDataObject>()) {
            FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
            data->DAdvise(&format, ADVF_NODATA, this, &cookie);
        }
        ComPtr<IConnectionPoint> point;
        if (const auto points = object.query<IConnectionPointContainer>();
            points && SUCCEEDED(points->FindConnectionPoint(IID_IPropertyNotifySink, point.put())))
            point->Advise(static_cast<IPropertyNotifySink*>(this), &cookie);
    }

    void STDMETHODCALLTYPE OnDataChange(FORMATETC*, STGMEDIUM*) override {
        callback_("OnDataChange");
    }
    void STDMETHODCALLTYPE OnViewChange(DWORD, LONG) override { callback_("OnViewChange"); }
    void STDMETHODCALLTYPE OnRename(IMoniker*) override {}
    void STDMETHODCALLTYPE OnSave() override { callback_("OnSave"); }
    void STDMETHODCALLTYPE OnClose() override { callback_("OnClose"); }
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID) override {
        callback_("OnChanged");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override {
        callback_("OnRequestEdit");
        return S_OK;
    }

private:
    Callback callback_;
};

} // namespace corvina::test
