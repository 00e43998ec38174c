#include "control/UprightDrawing.h"

#include <cstdlib>
#include <utility>

namespace corvina {
namespace {

// No device has so many pixels, and sums of two such coordinates are still numbers of 32 bits.
constexpr LONG furthest = 1 << 28;

bool isFar(const RECT& rect) noexcept {
    for (const LONG each : {rect.left, rect.top, rect.right, rect.bottom})
        if (each < -furthest || each > furthest)
            return true;
    return false;
}

bool rotates(HDC dc) noexcept {
    XFORM transform{};
    return ::GetGraphicsMode(dc) == GM_ADVANCED && ::GetWorldTransform(dc, &transform) &&
           (transform.eM12 != 0 || transform.eM21 != 0);
}

// From now on logical units are pixels.
void useDeviceUnits(HDC dc) noexcept {
    ::SetMapMode(dc, MM_TEXT);
    ::SetWindowOrgEx(dc, 0, 0, nullptr);
    ::SetViewportOrgEx(dc, 0, 0, nullptr);
    if (::GetGraphicsMode(dc) == GM_ADVANCED)
        ::ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
}

} // namespace

UprightDrawing::UprightDrawing(HDC dc, const RECT& bounds) noexcept : saved_(dc) {
    if (isFar(bounds))
        return;
    RECT onDevice = bounds, own = bounds;
    const DWORD kind = ::GetObjectType(dc);
    if (kind != OBJ_METADC && !::LPtoDP(dc, reinterpret_cast<POINT*>(&onDevice), 2))
        return;
    if (onDevice.left > onDevice.right) {
        std::swap(onDevice.left, onDevice.right);
        std::swap(own.left, own.right);
    }
    if (onDevice.top > onDevice.bottom) {
        std::swap(onDevice.top, onDevice.bottom);
        std::swap(own.top, own.bottom);
    }
    if (onDevice.left == onDevice.right || onDevice.top == onDevice.bottom)
        return;
    if (kind == OBJ_METADC || kind == OBJ_ENHMETADC || rotates(dc) ||
        (::GetLayout(dc) & LAYOUT_RTL) != 0) {
        bounds_ = own;
        return;
    }
    useDeviceUnits(dc);
    if (!isFar(onDevice) && ::RectVisible(dc, &onDevice))
        bounds_ = onDevice;
}

} // namespace corvina
