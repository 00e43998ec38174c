#pragma once

// The container as the control sees it: the client site, ambient properties and units.

#include "com/ComPtr.h"

#include <ocidl.h>
#include <oleidl.h>

namespace corvina {

class ControlSite {
public:
    void set(IOleClientSite* site) noexcept;
    [[nodiscard]] const ComPtr<IOleClientSite>& get() const noexcept { return site_; }

    // False only if the container says that the control is being designed.
    [[nodiscard]] bool userMode() const noexcept;
    // The container's background, or the system's window background.
    [[nodiscard]] COLORREF background() const noexcept;
    // A size in the container's own units as HIMETRIC; device pixels if it has none.
    [[nodiscard]] SIZE himetricFromUnits(SIZE units) const noexcept;
    void notifyFocus(bool focused) const noexcept;
    // Whether the container had a use for the key.
    [[nodiscard]] bool translateAccelerator(const MSG& message) const noexcept;

private:
    [[nodiscard]] bool ambient(DISPID id, VARIANT& value) const noexcept;

    ComPtr<IOleClientSite> site_;
};

// How large a device is: physically, and in pixels.
struct DeviceSize {
    SIZE millimetres;
    SIZE pixels;
};

// A size in the pixels of a device by the device's physical size, which metafiles go by. The
// logical inches that everything else goes by may be larger or smaller.
[[nodiscard]] SIZE devicePixels(SIZE himetric, const DeviceSize& device) noexcept;

// Sizes by the screen's resolution.
[[nodiscard]] SIZE himetricFromPixels(SIZE pixels) noexcept;
[[nodiscard]] SIZE pixelsFromHimetric(SIZE himetric) noexcept;

} // namespace corvina
