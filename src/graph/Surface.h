#pragma once

// A picture in memory to draw on, in pixels. It is empty at first.

#include "platform/GdiHandles.h"

#include <windows.h>

namespace corvina {

class Surface {
public:
    // Larger pictures take too much of a 32-bit process; such a surface stays empty.
    static constexpr LONGLONG highestPixelCount = 16LL * 1024 * 1024;

    // False, and the surface empty, if the size has no area or there is no memory for it. A new
    // size leaves the picture undefined; the same size again keeps it.
    bool resize(SIZE size) noexcept;

    [[nodiscard]] LONG width() const noexcept { return size_.cx; }
    [[nodiscard]] LONG height() const noexcept { return size_.cy; }
    [[nodiscard]] bool empty() const noexcept { return !dc_; }
    // Null if the surface is empty.
    [[nodiscard]] HDC dc() const noexcept { return dc_.get(); }

    void clear(COLORREF background) noexcept;

private:
    void release() noexcept;

    // In this order: the context that has the bitmap selected goes first.
    Bitmap bitmap_;
    MemoryContext dc_;
    SIZE size_{};
};

} // namespace corvina
