#include "window/WindowPicture.h"

#include "Owners.h"

#include <algorithm>

#include <objidl.h>

#include <gdiplus.h>

namespace corvina::app {

namespace {

// The encoder that comes with every Windows.
constexpr CLSID pngEncoder = {
    0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

// Null if there is nothing to copy, or no memory for it.
Bitmap copyOfScreen(const RECT& area) {
    if (IsRectEmpty(&area))
        return nullptr;
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const ScreenContext screen(GetDC(nullptr));
    Bitmap bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    const MemoryContext memory(CreateCompatibleDC(screen.get()));
    if (!bitmap || !memory)
        return nullptr;
    SelectObject(memory.get(), bitmap.get()); // until the context goes
    if (!BitBlt(memory.get(), 0, 0, width, height, screen.get(), area.left, area.top, SRCCOPY))
        return nullptr;
    return bitmap;
}

// Without what lies beyond the screens; empty if that is all of it.
RECT visiblePartOf(const RECT& area) {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const RECT screens{left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                       top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    RECT visible{};
    IntersectRect(&visible, &area, &screens);
    return visible;
}

// Windows' library for picture files, between its start and its end.
class PictureLibrary {
public:
    PictureLibrary() {
        const Gdiplus::GdiplusStartupInput input;
        started_ = Gdiplus::GdiplusStartup(&token_, &input, nullptr) == Gdiplus::Ok;
    }
    ~PictureLibrary() {
        if (started_)
            Gdiplus::GdiplusShutdown(token_);
    }
    PictureLibrary(const PictureLibrary&) = delete;
    PictureLibrary& operator=(const PictureLibrary&) = delete;
    [[nodiscard]] bool started() const noexcept { return started_; }

private:
    ULONG_PTR token_ = 0;
    bool started_ = false;
};

} // namespace

bool saveWindowPicture(HWND window, const std::wstring& file) {
    RECT area{};
    if (!GetWindowRect(window, &area))
        return false;
    const PictureLibrary library;
    const Bitmap copy = copyOfScreen(visiblePartOf(area));
    if (!library.started() || !copy)
        return false;
    Gdiplus::Bitmap picture(copy.get(), nullptr);
    return picture.Save(file.c_str(), &pngEncoder, nullptr) == Gdiplus::Ok;
}

} // namespace corvina::app
