#include "graph/Surface.h"

#include "graph/Painting.h"

namespace corvina {
namespace {

HBITMAP createBitmap(HDC dc, SIZE size) noexcept {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = -size.cy; // the top line first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    return ::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
}

} // namespace

bool Surface::resize(SIZE size) noexcept {
    if (!empty() && size.cx == size_.cx && size.cy == size_.cy)
        return true;
    release();
    if (size.cx <= 0 || size.cy <= 0 || LONGLONG{size.cx} * size.cy > highestPixelCount)
        return false;
    dc_ = ::CreateCompatibleDC(nullptr);
    bitmap_ = dc_ ? createBitmap(dc_, size) : nullptr;
    if (!bitmap_) {
        release();
        return false;
    }
    original_ = ::SelectObject(dc_, bitmap_);
    size_ = size;
    return true;
}

void Surface::Cls() noexcept {
    fill(dc_, {0, 0, size_.cx, size_.cy}, backColor_);
}

void Surface::release() noexcept {
    if (original_)
        ::SelectObject(dc_, original_);
    if (bitmap_)
        ::DeleteObject(bitmap_);
    if (dc_)
        ::DeleteDC(dc_);
    dc_ = nullptr;
    bitmap_ = nullptr;
    original_ = nullptr;
    size_ = {};
}

} // namespace corvina
