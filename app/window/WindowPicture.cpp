#include "window/WindowPicture.h"

#include <algorithm>

#include <objidl.h>

#include <gdiplus.h>

namespace corvina::app {

namespace {

// The encoder that comes with every Windows.
constexpr CLSID pngEncoder = {
    0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

HBITMAP copyOfScreen(const RECT& area) {
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
    SelectObject(memory, before);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

} // namespace

bool saveWindowPicture(HWND window, const std::wstring& file) {
    RECT area{};
    if (!GetWindowRect(window, &area))
        return false;
    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return false;
    const HBITMAP copy = copyOfScreen(area);
    bool saved = false;
    {
        Gdiplus::Bitmap picture(copy, nullptr);
        saved = picture.Save(file.c_str(), &pngEncoder, nullptr) == Gdiplus::Ok;
    }
    DeleteObject(copy);
    Gdiplus::GdiplusShutdown(token);
    return saved;
}

} // namespace corvina::app
