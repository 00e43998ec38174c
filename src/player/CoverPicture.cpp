#include "player/CoverPicture.h"

#include "platform/GdiHandles.h"

#include <algorithm>
#include <cstddef>
#include <wincodec.h>
#include <windows.h>

#include <olectl.h>

namespace corvina {
namespace {

constexpr std::uint32_t pixelBytes = 4;

struct PixelSize {
    UINT width = 0;
    UINT height = 0;
};

ComPtr<IWICBitmapFrameDecode> firstFrame(IWICImagingFactory& factory,
                                         std::span<const std::uint8_t> content) {
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    // The stream reads only; its function wants to know nothing of const.
    const bool failed =
        FAILED(factory.CreateStream(stream.put())) ||
        FAILED(stream->InitializeFromMemory(const_cast<BYTE*>(content.data()),
                                            static_cast<DWORD>(content.size()))) ||
        FAILED(factory.CreateDecoderFromStream(stream.get(), nullptr,
                                               WICDecodeMetadataCacheOnDemand, decoder.put())) ||
        FAILED(decoder->GetFrame(0, frame.put()));
    return failed ? ComPtr<IWICBitmapFrameDecode>() : frame;
}

// The size to which a picture is made smaller; nothing for one that is too large to decode.
PixelSize shownSize(PixelSize size) {
    const UINT longer = std::max(size.width, size.height);
    if (longer == 0 || std::uint64_t{size.width} * size.height > mostPicturePixels)
        return {};
    if (longer <= longestPictureSide)
        return size;
    const auto part = [longer](UINT side) {
        return std::max(static_cast<UINT>(std::uint64_t{side} * longestPictureSide / longer), 1u);
    };
    return {part(size.width), part(size.height)};
}

ComPtr<IWICBitmapSource> scaled(IWICImagingFactory& factory, IWICBitmapSource& source,
                                PixelSize size) {
    ComPtr<IWICBitmapScaler> scaler;
    const bool failed = FAILED(factory.CreateBitmapScaler(scaler.put())) ||
                        FAILED(scaler->Initialize(&source, size.width, size.height,
                                                  WICBitmapInterpolationModeFant));
    return failed ? ComPtr<IWICBitmapSource>() : scaler.query<IWICBitmapSource>();
}

ComPtr<IWICBitmapSource> converted(IWICImagingFactory& factory, IWICBitmapSource& source) {
    ComPtr<IWICFormatConverter> converter;
    const bool failed =
        FAILED(factory.CreateFormatConverter(converter.put())) ||
        FAILED(converter->Initialize(&source, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                     nullptr, 0, WICBitmapPaletteTypeCustom));
    return failed ? ComPtr<IWICBitmapSource>() : converter.query<IWICBitmapSource>();
}

// pixels: blue, green, red and how opaque they are.
void layOnWhite(std::span<std::uint8_t> pixels) noexcept {
    for (std::size_t at = 0; at + pixelBytes <= pixels.size(); at += pixelBytes) {
        const std::uint32_t opaque = pixels[at + 3];
        for (std::size_t color = at; color < at + 3; ++color)
            pixels[color] =
                static_cast<std::uint8_t>((pixels[color] * opaque + 255 * (255 - opaque)) / 255);
        pixels[at + 3] = 0;
    }
}

Bitmap bitmapOf(IWICBitmapSource& source, PixelSize size) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(size.width);
    info.bmiHeader.biHeight = -static_cast<LONG>(size.height); // the top line first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 8 * pixelBytes;
    void* bits = nullptr;
    Bitmap bitmap(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap)
        return bitmap;
    const UINT line = size.width * pixelBytes;
    const std::span pixels(static_cast<std::uint8_t*>(bits), std::size_t{line} * size.height);
    if (FAILED(source.CopyPixels(nullptr, line, static_cast<UINT>(pixels.size()), pixels.data())))
        bitmap.reset();
    else
        layOnWhite(pixels);
    return bitmap;
}

// The picture object deletes the bitmap at its end.
ComPtr<IPictureDisp> pictureOf(Bitmap bitmap) {
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = bitmap.get();
    ComPtr<IPictureDisp> picture;
    if (SUCCEEDED(
            ::OleCreatePictureIndirect(&description, IID_IPictureDisp, TRUE, picture.putVoid())))
        (void)bitmap.release();
    return picture;
}

} // namespace

ComPtr<IPictureDisp> makePicture(std::span<const std::uint8_t> content) {
    ComPtr<IWICImagingFactory> factory;
    if (content.empty() ||
        FAILED(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_IWICImagingFactory, factory.putVoid())))
        return {};
    const ComPtr<IWICBitmapFrameDecode> frame = firstFrame(*factory.get(), content);
    PixelSize size;
    if (!frame || FAILED(frame->GetSize(&size.width, &size.height)))
        return {};
    const PixelSize shown = shownSize(size);
    if (shown.width == 0)
        return {};
    ComPtr<IWICBitmapSource> source = frame.query<IWICBitmapSource>();
    if (source && shown.width != size.width)
        source = scaled(*factory.get(), *source.get(), shown);
    if (source)
        source = converted(*factory.get(), *source.get());
    Bitmap bitmap = source ? bitmapOf(*source.get(), shown) : Bitmap();
    return bitmap ? pictureOf(std::move(bitmap)) : ComPtr<IPictureDisp>();
}

} // namespace corvina
