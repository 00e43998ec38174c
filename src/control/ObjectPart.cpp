#include "control/ObjectPart.h"

#include "com/Enumerator.h"
#include "control/AboutBox.h"
#include "control/Verbs.h"
#include "runtime/OutOfMemory.h"

#include <cstring>
#include <cwchar>
#include <olectl.h>

namespace corvina {
namespace {

// A copy that the caller frees; null without memory.
wchar_t* taskString(const wchar_t* text) noexcept {
    const std::size_t bytes = (std::wcslen(text) + 1) * sizeof *text;
    auto* copy = static_cast<wchar_t*>(::CoTaskMemAlloc(bytes));
    if (copy)
        std::memcpy(copy, text, bytes);
    return copy;
}

bool copyVerb(const Verb& from, OLEVERB& to) noexcept {
    to = {.lVerb = from.number, .lpszVerbName = nullptr, .fuFlags = 0, .grfAttribs = 0};
    if (!from.name)
        return true;
    to.grfAttribs = from.attributes;
    to.lpszVerbName = taskString(from.name);
    return to.lpszVerbName != nullptr;
}

} // namespace

HRESULT ObjectPart::SetClientSite(IOleClientSite* site) {
    return enter([&] {
        // A window must not stay behind in a container that has let go of the control.
        inPlace_.InPlaceDeactivate();
        site_.set(site);
    });
}

HRESULT ObjectPart::GetClientSite(IOleClientSite** result) {
    return enterReturning(result, [&] { return ComPtr<IOleClientSite>(site_.get()).detach(); });
}

HRESULT ObjectPart::SetHostNames(LPCOLESTR, LPCOLESTR) {
    return S_OK;
}

HRESULT ObjectPart::Close(DWORD saveOption) {
    return enter([&] {
        inPlace_.InPlaceDeactivate();
        const ComPtr<IOleClientSite> site = site_.get();
        if (site && saveOption != OLECLOSE_NOSAVE && properties_.dirty())
            site->SaveObject();
        if (const ComPtr<IOleAdviseHolder> advises = advises_)
            advises->SendOnClose();
    });
}

HRESULT ObjectPart::SetMoniker(DWORD, IMoniker*) {
    return E_NOTIMPL;
}

HRESULT ObjectPart::GetMoniker(DWORD, DWORD, IMoniker** result) {
    return enterFilling(result, [] { return E_NOTIMPL; });
}

HRESULT ObjectPart::InitFromData(IDataObject*, BOOL, DWORD) {
    return E_NOTIMPL;
}

HRESULT ObjectPart::GetClipboardData(DWORD, IDataObject** result) {
    return enterFilling(result, [] { return E_NOTIMPL; });
}

HRESULT ObjectPart::DoVerb(LONG verb, MSG*, IOleClientSite*, LONG, HWND parent, LPCRECT) {
    return enter([&] { return performVerb(verb, parent); });
}

HRESULT ObjectPart::performVerb(LONG verb, HWND parent) {
    switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_UIACTIVATE:
        return inPlace_.activate(true);
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE:
        return inPlace_.activate(false);
    case OLEIVERB_HIDE:
        inPlace_.hide();
        return S_OK;
    case OLEIVERB_PROPERTIES:
        return showProperties();
    case OLEIVERB_DISCARDUNDOSTATE:
        return S_OK;
    case aboutVerb:
        showAboutBox(parent);
        return S_OK;
    default:
        break;
    }
    if (verb < 0)
        return E_NOTIMPL;
    // An unknown verb does what the primary one does, and says so.
    const HRESULT activated = inPlace_.activate(true);
    return FAILED(activated) ? activated : OLEOBJ_S_INVALIDVERB;
}

// The controls have no pages of their own; a container may have some for their properties.
HRESULT ObjectPart::showProperties() {
    const auto site = site_.get().query<IOleControlSite>();
    const HRESULT shown = site ? site->ShowPropertyFrame() : E_NOTIMPL;
    return SUCCEEDED(shown) ? shown : OLEOBJ_S_CANNOT_DOVERB_NOW;
}

HRESULT ObjectPart::EnumVerbs(IEnumOLEVERB** result) {
    return enterFilling(result, [&] {
        const auto verbs = controlVerbs();
        return giveEnumerator<IEnumOLEVERB, OLEVERB, Verb>({verbs.begin(), verbs.end()}, &copyVerb,
                                                           result);
    });
}

HRESULT ObjectPart::GetUserClassID(CLSID* result) {
    return enterReturning(result, [&] { return class_.clsid; });
}

HRESULT ObjectPart::GetUserType(DWORD, LPOLESTR* result) {
    return enterReturning(result, [&] { return allocated(taskString(class_.description)); });
}

HRESULT ObjectPart::SetExtent(DWORD aspect, SIZEL* size) {
    if (!size)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    return enter([&] {
        const SIZE before = extent_.get();
        if (!extent_.set({size->cx, size->cy}))
            return E_INVALIDARG;
        // A container that is refused asks for the extent, and shows that.
        if (extent_.fixed() && !extent_.isShownAs({size->cx, size->cy}))
            return E_FAIL;
        const SIZE after = extent_.get();
        if (before.cx != after.cx || before.cy != after.cy) {
            properties_.setDirty(true);
            changes_.pictureChanged();
        }
        return S_OK;
    });
}

HRESULT ObjectPart::GetExtent(DWORD aspect, SIZEL* size) {
    return enterFilling(size, [&] { return extent_.get(aspect, *size); });
}

HRESULT ObjectPart::Advise(IAdviseSink* sink, DWORD* connection) {
    return enterFilling(connection, [&] {
        if (!advises_)
            if (const HRESULT made = ::CreateOleAdviseHolder(advises_.put()); FAILED(made))
                return made;
        return advises_->Advise(sink, connection);
    });
}

HRESULT ObjectPart::Unadvise(DWORD connection) {
    return enter([&] { return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION; });
}

HRESULT ObjectPart::EnumAdvise(IEnumSTATDATA** result) {
    return enterFilling(result, [&] { return advises_ ? advises_->EnumAdvise(result) : S_OK; });
}

HRESULT ObjectPart::GetMiscStatus(DWORD aspect, DWORD* status) {
    return enterReturning(
        status, [&] { return aspect == DVASPECT_CONTENT ? miscStatus(class_) : DWORD{0}; });
}

HRESULT ObjectPart::SetColorScheme(LOGPALETTE*) {
    return E_NOTIMPL;
}

} // namespace corvina
