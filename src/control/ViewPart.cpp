#include "control/ViewPart.h"

#include "control/UprightDrawing.h"

namespace corvina {

void ViewPart::notifyChanged() noexcept {
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
    return enter([&] {
        const UprightDrawing drawing(dc,
                                     {bounds->left, bounds->top, bounds->right, bounds->bottom});
        if (drawing.bounds())
            hooks_.draw(dc, *drawing.bounds());
    });
}

HRESULT ViewPart::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** result) {
    return enterFilling(result, [] { return S_FALSE; });
}

HRESULT ViewPart::Freeze(DWORD, LONG, void*, DWORD*) {
    return E_NOTIMPL;
}

HRESULT ViewPart::Unfreeze(DWORD) {
    return E_NOTIMPL;
}

HRESULT ViewPart::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
    return enter([&] {
        sink_ = ComPtr<IAdviseSink>(sink);
        aspects_ = aspects;
        flags_ = flags;
        if (flags & ADVF_PRIMEFIRST)
            notifyChanged();
    });
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
    return enterFilling(size, [&] { return extent_.get(aspect, *size); });
}

HRESULT ViewPart::GetRect(DWORD aspect, LPRECTL rect) {
    return enterFilling(rect, [&] {
        if (aspect != DVASPECT_CONTENT && aspect != DVASPECT_OPAQUE)
            return DV_E_DVASPECT;
        const SIZE size = extent_.get();
        *rect = {0, 0, size.cx, size.cy};
        return S_OK;
    });
}

HRESULT ViewPart::GetViewStatus(DWORD* status) {
    return enterReturning(status, [] { return VIEWSTATUS_OPAQUE; });
}

HRESULT ViewPart::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT location, LONG, DWORD* result) {
    if (!bounds)
        return E_POINTER;
    return enterFilling(result, [&] {
        if (aspect != DVASPECT_CONTENT)
            return DV_E_DVASPECT;
        *result = ::PtInRect(bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
        return S_OK;
    });
}

HRESULT ViewPart::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT location, LONG,
                               DWORD* result) {
    if (!bounds || !location)
        return E_POINTER;
    return enterFilling(result, [&] {
        if (aspect != DVASPECT_CONTENT)
            return DV_E_DVASPECT;
        RECT common;
        *result = ::IntersectRect(&common, bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
        return S_OK;
    });
}

HRESULT ViewPart::GetNaturalExtent(DWORD aspect, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO* info,
                                   SIZEL* size) {
    if (!info)
        return E_POINTER;
    return enterFilling(size, [&] {
        if (aspect != DVASPECT_CONTENT)
            return DV_E_DVASPECT;
        // A proposed size that the container wants adjusted: any will do.
        if (info->dwExtentMode == DVEXTENT_INTEGRAL && !extent_.fixed())
            return E_NOTIMPL;
        *size = extent_.fixed() ? extent_.get() : extent_.natural();
        return S_OK;
    });
}

} // namespace corvina
