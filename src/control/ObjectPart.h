#pragma once

// The control as an embedded object: its site, extent, verbs and advises.

#include "com/Part.h"
#include "control/ControlChanges.h"
#include "control/ControlExtent.h"
#include "control/ControlSite.h"
#include "control/InPlacePart.h"
#include "control/PropertyValues.h"

#include <oleidl.h>

namespace corvina {

class ObjectPart final : public Part<IOleObject> {
public:
    ObjectPart(IUnknown& outer, const ControlClass& controlClass, ControlSite& site,
               ControlExtent& extent, PropertyValues& properties, InPlacePart& inPlace,
               ControlChanges& changes) noexcept
        : Part(outer), class_(controlClass), site_(site), extent_(extent), properties_(properties),
          inPlace_(inPlace), changes_(changes) {}

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

private:
    HRESULT performVerb(LONG verb, HWND parent);
    HRESULT showProperties();

    const ControlClass& class_;
    ControlSite& site_;
    ControlExtent& extent_;
    PropertyValues& properties_;
    InPlacePart& inPlace_;
    ControlChanges& changes_;
    ComPtr<IOleAdviseHolder> advises_;
};

} // namespace corvina
