#pragma once

// The control's picture as a metafile, for printing and for containers that show a still picture.

#include "com/Part.h"
#include "control/ControlExtent.h"
#include "control/ControlHooks.h"
#include "platform/GdiHandles.h"

#include <objidl.h>

namespace corvina {

class DataPart final : public Part<IDataObject> {
public:
    DataPart(IUnknown& outer, const ControlExtent& extent, ControlHooks& hooks) noexcept
        : Part(outer), extent_(extent), hooks_(hooks) {}

    // Notifies everybody who was advised of new data.
    void notifyChanged() noexcept;

    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC* format, STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override;
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC* in, FORMATETC* out) override;
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC* format, STGMEDIUM* medium, BOOL release) override;
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** result) override;
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink,
                                      DWORD* connection) override;
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD connection) override;
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA** result) override;

private:
    [[nodiscard]] EnhancedMetafile enhancedMetafile();
    [[nodiscard]] Metafile plainMetafile();

    const ControlExtent& extent_;
    ControlHooks& hooks_;
    ComPtr<IDataAdviseHolder> advises_;
};

} // namespace corvina
