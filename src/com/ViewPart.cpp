#include "com/ViewPart.h"

#include "com/Guard.h"
#include "com/OleControl.h"
#include "platform/SavedContext.h"

namespace corvina {

void ViewPart::tellChanged() noexcept {
    const ComPtr<IAdviseSink> sink = sink_;
    if (!sink || !(aspects_ & DVASPECT_CONTENT))
        return;
    if (flags_ & ADVF_ONLYONCE)
        sink_.reset();
    sink->OnViewChange(DVASPECT_CONTENT, -1);
}

HRESULT ViewPart::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc, LPCRECTL bounds,
                       LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR) {
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    if (!bounds || !dc)
        return E_INVALIDARG;
    const ComPtr<IUnknown> alive(&whole());
    return guarded(IID_IViewObject, L"", [&] {
        const SavedContext saved(dc);
        control_.hooks().draw(dc, {bounds->left, bounds->top, bounds->right, bounds->bottom});
    });
}

HRESULT ViewPart::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return S_FALSE;
}

HRESULT ViewPart::Freeze(DWORD, LONG, void*, DWORD*) {
    return E_NOTIMPL;
}

HRESULT ViewPart::Unfreeze(DWORD) {
    return E_NOTIMPL;
}

HRESULT ViewPart::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
    const ComPtr<IUnknown> alive(&whole());
    sink_ = ComPtr<IAdviseSink>(sink);
    aspects_ = aspects;
    flags_ = flags;
    if (flags & ADVF_PRIMEFIRST)
        tellChanged();
    return S_OK;
}

HRESULT ViewPart::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
    if (aspects)
        *aspects = aspects_;
    if (flags)
        *flags = flags_;
    if (sink)
        *sink = ComPtr<IAdviseSink>(sink_).detach();
    return S_OK;
}

HRESULT ViewPart::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, SIZEL* size) {
    return control_.object().GetExtent(aspect, size);
}

HRESULT ViewPart::GetRect(DWORD aspect, LPRECTL rect) {
    if (!rect)
        return E_POINTER;
    *rect = RECTL{};
    if (aspect != DVASPECT_CONTENT && aspect != DVASPECT_OPAQUE)
        return DV_E_DVASPECT;
    const SIZE size = control_.extent().get();
    *rect = {0, 0, size.cx, size.cy};
    return S_OK;
}

HRESULT ViewPart::GetViewStatus(DWORD* status) {
    if (!status)
        return E_POINTER;
    *status = VIEWSTATUS_OPAQUE;
    return S_OK;
}

HRESULT ViewPart::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT location, LONG, DWORD* result) {
    if (!bounds || !result)
        return E_POINTER;
    *result = HITRESULT_OUTSIDE;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    *result = ::PtInRect(bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

HRESULT ViewPart::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT location, LONG,
                               DWORD* result) {
    if (!bounds || !location || !result)
        return E_POINTER;
    *result = HITRESULT_OUTSIDE;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    RECT common;
    *result = ::IntersectRect(&common, bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

HRESULT ViewPart::GetNaturalExtent(DWORD aspect, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO* info,
                                   SIZEL* size) {
    if (!size || !info)
        return E_POINTER;
    *size = SIZEL{};
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    const bool fixed = control_.extent().fixed();
    // A proposed size that the container wants adjusted: any will do.
    if (info->dwExtentMode == DVEXTENT_INTEGRAL && !fixed)
        return E_NOTIMPL;
    *size = fixed ? control_.extent().get() : control_.extent().natural();
    return S_OK;
}

} // namespace corvina
