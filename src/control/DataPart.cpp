#include "control/DataPart.h"

#include "com/Enumerator.h"
#include "platform/UniqueHandle.h"
#include "runtime/OutOfMemory.h"

#include <ole2.h>

#include <iterator>

namespace corvina {
namespace {

constexpr FORMATETC formats[] = {
    {.cfFormat = CF_ENHMETAFILE,
     .ptd = nullptr,
     .dwAspect = DVASPECT_CONTENT,
     .lindex = -1,
     .tymed = TYMED_ENHMF},
    {.cfFormat = CF_METAFILEPICT,
     .ptd = nullptr,
     .dwAspect = DVASPECT_CONTENT,
     .lindex = -1,
     .tymed = TYMED_MFPICT},
};

// A device context that records what is drawn on it. A recording that is not finished is thrown
// away.
struct EnhancedRecordingTraits {
    using Handle = HDC;
    static constexpr Handle none = nullptr;
    static void close(Handle dc) noexcept { ::DeleteEnhMetaFile(::CloseEnhMetaFile(dc)); }
};
using EnhancedRecording = UniqueHandle<EnhancedRecordingTraits>;

struct RecordingTraits {
    using Handle = HDC;
    static constexpr Handle none = nullptr;
    static void close(Handle dc) noexcept { ::DeleteMetaFile(::CloseMetaFile(dc)); }
};
using Recording = UniqueHandle<RecordingTraits>;

struct GlobalMemoryTraits {
    using Handle = HGLOBAL;
    static constexpr Handle none = nullptr;
    static void close(Handle memory) noexcept { ::GlobalFree(memory); }
};
using GlobalMemory = UniqueHandle<GlobalMemoryTraits>;

DeviceSize sizeOf(HDC dc) noexcept {
    return {.millimetres = {::GetDeviceCaps(dc, HORZSIZE), ::GetDeviceCaps(dc, VERTSIZE)},
            .pixels = {::GetDeviceCaps(dc, HORZRES), ::GetDeviceCaps(dc, VERTRES)}};
}

// A plain metafile as it is handed over: with its size in HIMETRIC.
GlobalMemory metafilePicture(Metafile file, SIZE himetric) {
    GlobalMemory memory(allocated(::GlobalAlloc(GMEM_MOVEABLE, sizeof(METAFILEPICT))));
    auto* const picture = static_cast<METAFILEPICT*>(allocated(::GlobalLock(memory.get())));
    *picture = {
        .mm = MM_ANISOTROPIC, .xExt = himetric.cx, .yExt = himetric.cy, .hMF = file.release()};
    ::GlobalUnlock(memory.get());
    return memory;
}

} // namespace

EnhancedMetafile DataPart::enhancedMetafile() {
    const SIZE himetric = extent_.get();
    const RECT frame{0, 0, himetric.cx, himetric.cy};
    EnhancedRecording recording(
        allocated(::CreateEnhMetaFileW(nullptr, nullptr, &frame, L"Corvina\0")));
    // The frame is physical, so the picture fills it in pixels of the device's physical size.
    const SIZE pixels = devicePixels(himetric, sizeOf(recording.get()));
    if (pixels.cx > 0 && pixels.cy > 0)
        hooks_.draw(recording.get(), {0, 0, pixels.cx, pixels.cy});
    return EnhancedMetafile(::CloseEnhMetaFile(recording.release()));
}

Metafile DataPart::plainMetafile() {
    const SIZE pixels = extent_.pixels();
    Recording recording(allocated(::CreateMetaFileW(nullptr)));
    ::SetMapMode(recording.get(), MM_ANISOTROPIC);
    ::SetWindowOrgEx(recording.get(), 0, 0, nullptr);
    ::SetWindowExtEx(recording.get(), pixels.cx, pixels.cy, nullptr);
    hooks_.draw(recording.get(), {0, 0, pixels.cx, pixels.cy});
    return Metafile(::CloseMetaFile(recording.release()));
}

void DataPart::notifyChanged() noexcept {
    if (const ComPtr<IDataAdviseHolder> advises = advises_)
        advises->SendOnDataChange(this, 0, 0);
}

HRESULT DataPart::GetData(FORMATETC* format, STGMEDIUM* medium) {
    if (!format)
        return E_POINTER;
    return enterFilling(medium, [&] {
        if (const HRESULT known = QueryGetData(format); known != S_OK)
            return known;
        if (format->cfFormat == CF_ENHMETAFILE) {
            medium->hEnhMetaFile = enhancedMetafile().release();
            medium->tymed = TYMED_ENHMF;
        } else {
            medium->hMetaFilePict = metafilePicture(plainMetafile(), extent_.get()).release();
            medium->tymed = TYMED_MFPICT;
        }
        return S_OK;
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
    return enterFilling(result, [&] {
        if (direction != DATADIR_GET)
            return E_NOTIMPL;
        return giveEnumerator<IEnumFORMATETC, FORMATETC, FORMATETC>(
            {std::begin(formats), std::end(formats)},
            [](const FORMATETC& from, FORMATETC& to) noexcept {
                to = from;
                return true;
            },
            result);
    });
}

HRESULT DataPart::DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* connection) {
    if (!format)
        return E_POINTER;
    return enterFilling(connection, [&] {
        if (!advises_)
            if (const HRESULT made = ::CreateDataAdviseHolder(advises_.put()); FAILED(made))
                return made;
        return advises_->Advise(this, format, flags, sink, connection);
    });
}

HRESULT DataPart::DUnadvise(DWORD connection) {
    return enter([&] { return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION; });
}

HRESULT DataPart::EnumDAdvise(IEnumSTATDATA** result) {
    return enterFilling(result, [&] { return advises_ ? advises_->EnumAdvise(result) : S_OK; });
}

} // namespace corvina
