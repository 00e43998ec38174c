#include "com/DataPart.h"

#include "com/Enumerator.h"
#include "com/Guard.h"
#include "com/OleControl.h"

#include <ole2.h>

namespace corvina {
namespace {

constexpr FORMATETC formats[] = {
    {CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF},
    {CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT},
};

HENHMETAFILE enhancedMetafile(OleControl& control) {
    const SIZE himetric = control.extent().get();
    const SIZE pixels = control.extent().pixels();
    const RECT frame{0, 0, himetric.cx, himetric.cy};
    const HDC dc = ::CreateEnhMetaFileW(nullptr, nullptr, &frame, L"Corvina\0");
    if (!dc)
        throw std::bad_alloc();
    try {
        control.hooks().draw(dc, {0, 0, pixels.cx, pixels.cy});
    } catch (...) {
        ::DeleteEnhMetaFile(::CloseEnhMetaFile(dc));
        throw;
    }
    return ::CloseEnhMetaFile(dc);
}

HMETAFILE plainMetafile(OleControl& control) {
    const SIZE pixels = control.extent().pixels();
    const HDC dc = ::CreateMetaFileW(nullptr);
    if (!dc)
        throw std::bad_alloc();
    ::SetMapMode(dc, MM_ANISOTROPIC);
    ::SetWindowOrgEx(dc, 0, 0, nullptr);
    ::SetWindowExtEx(dc, pixels.cx, pixels.cy, nullptr);
    try {
        control.hooks().draw(dc, {0, 0, pixels.cx, pixels.cy});
    } catch (...) {
        ::DeleteMetaFile(::CloseMetaFile(dc));
        throw;
    }
    return ::CloseMetaFile(dc);
}

HGLOBAL metafilePicture(OleControl& control) {
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, sizeof(METAFILEPICT));
    if (!memory)
        throw std::bad_alloc();
    try {
        const HMETAFILE picture = plainMetafile(control);
        const SIZE himetric = control.extent().get();
        *static_cast<METAFILEPICT*>(::GlobalLock(memory)) = {MM_ANISOTROPIC, himetric.cx,
                                                             himetric.cy, picture};
        ::GlobalUnlock(memory);
    } catch (...) {
        ::GlobalFree(memory);
        throw;
    }
    return memory;
}

} // namespace

void DataPart::tellChanged() noexcept {
    if (const ComPtr<IDataAdviseHolder> advises = advises_)
        advises->SendOnDataChange(this, 0, 0);
}

HRESULT DataPart::GetData(FORMATETC* format, STGMEDIUM* medium) {
    if (!format || !medium)
        return E_POINTER;
    *medium = STGMEDIUM{};
    if (const HRESULT known = QueryGetData(format); known != S_OK)
        return known;
    const ComPtr<IUnknown> alive(&whole());
    return guarded(IID_IDataObject, L"", [&] {
        if (format->cfFormat == CF_ENHMETAFILE) {
            medium->hEnhMetaFile = enhancedMetafile(control_);
            medium->tymed = TYMED_ENHMF;
        } else {
            medium->hMetaFilePict = metafilePicture(control_);
            medium->tymed = TYMED_MFPICT;
        }
    });
}

HRESULT DataPart::GetDataHere(FORMATETC*, STGMEDIUM*) {
    return E_NOTIMPL;
}

HRESULT DataPart::QueryGetData(FORMATETC* format) {
    if (!format)
        return E_POINTER;
    if (format->dwAspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    for (const FORMATETC& each : formats)
        if (format->cfFormat == each.cfFormat)
            return format->tymed & each.tymed ? S_OK : DV_E_TYMED;
    return DV_E_FORMATETC;
}

HRESULT DataPart::GetCanonicalFormatEtc(FORMATETC*, FORMATETC* out) {
    if (!out)
        return E_POINTER;
    out->ptd = nullptr;
    return E_NOTIMPL;
}

HRESULT DataPart::SetData(FORMATETC*, STGMEDIUM*, BOOL) {
    return E_NOTIMPL;
}

HRESULT DataPart::EnumFormatEtc(DWORD direction, IEnumFORMATETC** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    if (direction != DATADIR_GET)
        return E_NOTIMPL;
    return guarded(IID_IDataObject, L"", [&] {
        return giveEnumerator<IEnumFORMATETC, FORMATETC, FORMATETC>(
            {std::begin(formats), std::end(formats)},
            +[](const FORMATETC& from, FORMATETC& to) noexcept {
                to = from;
                return true;
            },
            result);
    });
}

HRESULT DataPart::DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* connection) {
    if (!format || !connection)
        return E_POINTER;
    *connection = 0;
    if (!advises_)
        if (const HRESULT made = ::CreateDataAdviseHolder(advises_.put()); FAILED(made))
            return made;
    return advises_->Advise(this, format, flags, sink, connection);
}

HRESULT DataPart::DUnadvise(DWORD connection) {
    return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT DataPart::EnumDAdvise(IEnumSTATDATA** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return advises_ ? advises_->EnumAdvise(result) : S_OK;
}

} // namespace corvina
