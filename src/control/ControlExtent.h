#pragma once

// How large the control is, in HIMETRIC.

#include "control/ControlClass.h"
#include "control/ControlSite.h"

#include <cmath>
#include <cstdlib>

namespace corvina {

class ControlExtent {
public:
    ControlExtent(const ControlClass& controlClass, const ControlSite& site) noexcept
        : class_(controlClass), site_(site), wanted_(natural()) {}

    // A control of fixed size has that size whatever was set.
    [[nodiscard]] bool fixed() const noexcept {
        return class_.fixedUnits.cx > 0 && class_.fixedUnits.cy > 0;
    }
    [[nodiscard]] SIZE get() const noexcept {
        return fixed() ? site_.himetricFromUnits(class_.fixedUnits) : wanted_;
    }
    // The same as a container asks for it.
    HRESULT get(DWORD aspect, SIZEL& size) const noexcept {
        if (aspect != DVASPECT_CONTENT)
            return DV_E_DVASPECT;
        size = get();
        return S_OK;
    }
    // Whether that size is the extent, as far as the screen's pixels show it.
    [[nodiscard]] bool isShownAs(SIZE himetric) const noexcept {
        const SIZE own = pixels(), other = pixelsFromHimetric(himetric);
        return std::abs(own.cx - other.cx) <= 1 && std::abs(own.cy - other.cy) <= 1;
    }
    [[nodiscard]] SIZE natural() const noexcept { return himetricFromPixels(class_.naturalPixels); }
    [[nodiscard]] SIZE pixels() const noexcept { return pixelsFromHimetric(get()); }

    // What a container or persisted data asks; sizes below 0 are refused.
    bool set(SIZE himetric) noexcept {
        if (himetric.cx < 0 || himetric.cy < 0)
            return false;
        wanted_ = himetric;
        return true;
    }

private:
    const ControlClass& class_;
    const ControlSite& site_;
    SIZE wanted_;
};

} // namespace corvina
