#include "graph/Surface.h"

#include "graph/Painting.h"

#include <utility>

namespace corvina {
namespace {

Bitmap createBitmap(HDC dc, SIZE size) noexcept {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = -size.cy; // the top line first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    return Bitmap(::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
}

} // namespace

bool Surface::resize(SIZE size) noexcept {
    if (!empty() && size.cx == size_.cx && size.cy == size_.cy)
        return true;
    release();
    if (size.cx <= 0 || size.cy <= 0 || LONGLONG{size.cx} * size.cy > highestPixelCount)
        return false;
    MemoryContext dc(::CreateCompatibleDC(nullptr));
    if (!dc)
        return false;
    bitmap_ = createBitmap(dc.get(), size);
    if (!bitmap_)
        return false;
    ::SelectObject(dc.get(), bitmap_.get());
    dc_ = std::move(dc);
    size_ = size;
    return true;
}

void Surface::clear(COLORREF background) noexcept {
    fill(dc(), {0, 0, size_.cx, size_.cy}, background);
}

void Surface::release() noexcept {
    dc_.reset();
    bitmap_.reset();
    size_ = {};
}

} // namespace corvina
