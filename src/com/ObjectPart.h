#pragma once

// The control as an embedded object: its site, extent, verbs and advises, and frozen events.

#include "com/Part.h"

#include <ocidl.h>
#include <oleidl.h>

namespace corvina {

class OleControl;

class ObjectPart final : public Part<IOleObject, IOleControl> {
public:
    // The one verb beyond the standard ones.
    static constexpr LONG aboutVerb = 1;

    ObjectPart(IUnknown& whole, OleControl& control) noexcept : Part(whole), control_(control) {}

    // Tells everybody who was advised that the control is there no more.
    void tellClosed() noexcept;

    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** result) override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR application, LPCOLESTR object) override;
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD which, IMoniker* moniker) override;
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** result) override;
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject* data, BOOL creation,
                                           DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD reserved, IDataObject** result) override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, MSG* message, IOleClientSite* site, LONG index,
                                     HWND parent, LPCRECT position) override;
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** result) override;
    HRESULT STDMETHODCALLTYPE Update() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* result) override;
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* result) override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) override;
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** result) override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE* palette) override;

    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG* message) override;
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID property) override;
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) override;

private:
    HRESULT showProperties();

    OleControl& control_;
    ComPtr<IOleAdviseHolder> advises_;
};

} // namespace corvina
