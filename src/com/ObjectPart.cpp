#include "com/ObjectPart.h"

#include "com/AboutBox.h"
#include "com/Enumerator.h"
#include "com/Guard.h"
#include "com/OleControl.h"

#include <cstring>
#include <cwchar>
#include <olectl.h>

namespace corvina {
namespace {

struct Verb {
    LONG number;
    const wchar_t* name; // null for a verb that no menu shows
};

constexpr Verb verbs[] = {
    {OLEIVERB_SHOW, nullptr},       {OLEIVERB_INPLACEACTIVATE, nullptr},
    {OLEIVERB_UIACTIVATE, nullptr}, {OLEIVERB_HIDE, nullptr},
    {OLEIVERB_PROPERTIES, nullptr}, {ObjectPart::aboutVerb, L"&About..."},
};

// A copy that the caller frees; null without memory.
wchar_t* taskString(const wchar_t* text) noexcept {
    const std::size_t bytes = (std::wcslen(text) + 1) * sizeof *text;
    auto* copy = static_cast<wchar_t*>(::CoTaskMemAlloc(bytes));
    if (copy)
        std::memcpy(copy, text, bytes);
    return copy;
}

bool copyVerb(const Verb& from, OLEVERB& to) noexcept {
    to = {from.number, nullptr, 0, 0};
    if (!from.name)
        return true;
    to.grfAttribs = OLEVERBATTRIB_ONCONTAINERMENU | OLEVERBATTRIB_NEVERDIRTIES;
    to.lpszVerbName = taskString(from.name);
    return to.lpszVerbName != nullptr;
}

} // namespace

void ObjectPart::tellClosed() noexcept {
    if (const ComPtr<IOleAdviseHolder> advises = advises_)
        advises->SendOnClose();
}

HRESULT ObjectPart::SetClientSite(IOleClientSite* site) {
    const ComPtr<IUnknown> alive(&whole());
    // A window must not stay behind in a container that has let go of the control.
    control_.inPlace().InPlaceDeactivate();
    control_.site().set(site);
    return S_OK;
}

HRESULT ObjectPart::GetClientSite(IOleClientSite** result) {
    if (!result)
        return E_POINTER;
    *result = ComPtr<IOleClientSite>(control_.site().get()).detach();
    return S_OK;
}

HRESULT ObjectPart::SetHostNames(LPCOLESTR, LPCOLESTR) {
    return S_OK;
}

HRESULT ObjectPart::Close(DWORD saveOption) {
    const ComPtr<IUnknown> alive(&whole());
    control_.inPlace().InPlaceDeactivate();
    const ComPtr<IOleClientSite> site = control_.site().get();
    if (site && saveOption != OLECLOSE_NOSAVE && control_.properties().dirty())
        site->SaveObject();
    tellClosed();
    return S_OK;
}

HRESULT ObjectPart::SetMoniker(DWORD, IMoniker*) {
    return E_NOTIMPL;
}

HRESULT ObjectPart::GetMoniker(DWORD, DWORD, IMoniker** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return E_NOTIMPL;
}

HRESULT ObjectPart::InitFromData(IDataObject*, BOOL, DWORD) {
    return E_NOTIMPL;
}

HRESULT ObjectPart::GetClipboardData(DWORD, IDataObject** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return E_NOTIMPL;
}

HRESULT ObjectPart::DoVerb(LONG verb, MSG*, IOleClientSite*, LONG, HWND parent, LPCRECT) {
    const ComPtr<IUnknown> alive(&whole());
    switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_UIACTIVATE:
        return control_.inPlace().activate(true);
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE:
        return control_.inPlace().activate(false);
    case OLEIVERB_HIDE:
        control_.inPlace().hide();
        return S_OK;
    case OLEIVERB_PROPERTIES:
        return showProperties();
    case OLEIVERB_DISCARDUNDOSTATE:
        return S_OK;
    case aboutVerb:
        return guarded(IID_IOleObject, L"", [&] { showAboutBox(parent); });
    default:
        break;
    }
    if (verb < 0)
        return E_NOTIMPL;
    // An unknown verb does what the primary one does, and says so.
    const HRESULT activated = control_.inPlace().activate(true);
    return FAILED(activated) ? activated : OLEOBJ_S_INVALIDVERB;
}

// The controls have no pages of their own; a container may have some for their properties.
HRESULT ObjectPart::showProperties() {
    const auto site = control_.site().get().query<IOleControlSite>();
    const HRESULT shown = site ? site->ShowPropertyFrame() : E_NOTIMPL;
    return SUCCEEDED(shown) ? shown : OLEOBJ_S_CANNOT_DOVERB_NOW;
}

HRESULT ObjectPart::EnumVerbs(IEnumOLEVERB** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return guarded(IID_IOleObject, L"", [&] {
        return giveEnumerator<IEnumOLEVERB, OLEVERB, Verb>({std::begin(verbs), std::end(verbs)},
                                                           copyVerb, result);
    });
}

HRESULT ObjectPart::GetUserClassID(CLSID* result) {
    if (!result)
        return E_POINTER;
    *result = control_.controlClass().clsid;
    return S_OK;
}

HRESULT ObjectPart::GetUserType(DWORD, LPOLESTR* result) {
    if (!result)
        return E_POINTER;
    *result = taskString(control_.controlClass().userType);
    return *result ? S_OK : E_OUTOFMEMORY;
}

HRESULT ObjectPart::SetExtent(DWORD aspect, SIZEL* size) {
    if (!size)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    const SIZE before = control_.extent().get();
    if (!control_.extent().set({size->cx, size->cy}))
        return E_INVALIDARG;
    const SIZE after = control_.extent().get();
    if (before.cx != after.cx || before.cy != after.cy) {
        const ComPtr<IUnknown> alive(&whole());
        control_.properties().setDirty(true);
        control_.pictureChanged();
    }
    return S_OK;
}

HRESULT ObjectPart::GetExtent(DWORD aspect, SIZEL* size) {
    if (!size)
        return E_POINTER;
    *size = SIZEL{};
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    *size = control_.extent().get();
    return S_OK;
}

HRESULT ObjectPart::Advise(IAdviseSink* sink, DWORD* connection) {
    if (!connection)
        return E_POINTER;
    *connection = 0;
    if (!advises_)
        if (const HRESULT made = ::CreateOleAdviseHolder(advises_.put()); FAILED(made))
            return made;
    return advises_->Advise(sink, connection);
}

HRESULT ObjectPart::Unadvise(DWORD connection) {
    return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT ObjectPart::EnumAdvise(IEnumSTATDATA** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return advises_ ? advises_->EnumAdvise(result) : S_OK;
}

HRESULT ObjectPart::GetMiscStatus(DWORD aspect, DWORD* status) {
    if (!status)
        return E_POINTER;
    *status = aspect == DVASPECT_CONTENT ? controlMiscStatus : 0;
    return S_OK;
}

HRESULT ObjectPart::SetColorScheme(LOGPALETTE*) {
    return E_NOTIMPL;
}

HRESULT ObjectPart::GetControlInfo(CONTROLINFO* info) {
    if (!info)
        return E_POINTER;
    *info = CONTROLINFO{sizeof(CONTROLINFO), nullptr, 0, 0}; // no mnemonics
    return S_OK;
}

HRESULT ObjectPart::OnMnemonic(MSG*) {
    return S_OK;
}

HRESULT ObjectPart::OnAmbientPropertyChange(DISPID property) {
    const ComPtr<IUnknown> alive(&whole());
    if (property == DISPID_UNKNOWN || property == DISPID_AMBIENT_USERMODE)
        control_.inPlace().userModeChanged();
    if (property == DISPID_UNKNOWN || property == DISPID_AMBIENT_BACKCOLOR ||
        property == DISPID_AMBIENT_USERMODE)
        control_.pictureChanged();
    return S_OK;
}

HRESULT ObjectPart::FreezeEvents(BOOL freeze) {
    const ComPtr<IUnknown> alive(&whole());
    if (freeze)
        control_.events().freeze();
    else
        control_.events().thaw();
    return S_OK;
}

} // namespace corvina
