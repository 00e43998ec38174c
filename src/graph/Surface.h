#pragma once

// A picture in memory to draw on, in pixels. It has no size at first.

#include <windows.h>

namespace corvina {

class Surface {
public:
    // Larger pictures take too much of a 32-bit process; such a surface stays empty.
    static constexpr LONGLONG highestPixelCount = 16LL * 1024 * 1024;

    Surface() noexcept = default;
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    ~Surface() { release(); }

    // False, and the surface empty, where the size has no area or there is no memory for it. A new
    // size leaves the picture undefined; the same size again keeps it.
    bool resize(SIZE size) noexcept;

    [[nodiscard]] LONG ScaleWidth() const noexcept { return size_.cx; }
    [[nodiscard]] LONG ScaleHeight() const noexcept { return size_.cy; }
    [[nodiscard]] bool empty() const noexcept { return !dc_; }
    // Null where the surface is empty.
    [[nodiscard]] HDC dc() const noexcept { return dc_; }

    // The colours that drawing uses from now on: of lines, and of the cleared surface.
    void ForeColor(COLORREF color) noexcept { foreColor_ = color; }
    void BackColor(COLORREF color) noexcept { backColor_ = color; }
    [[nodiscard]] COLORREF ForeColor() const noexcept { return foreColor_; }
    [[nodiscard]] COLORREF BackColor() const noexcept { return backColor_; }

    void Cls() noexcept;

private:
    void release() noexcept;

    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ original_ = nullptr; // the bitmap to put back before the own one is deleted
    SIZE size_{};
    COLORREF foreColor_ = RGB(0, 0, 0);
    COLORREF backColor_ = RGB(0, 0, 0);
};

} // namespace corvina
