#include "control/ControlSite.h"

#include "com/Variant.h"
#include "platform/GdiHandles.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <oleauto.h>
#include <olectl.h>

namespace corvina {
namespace {

constexpr int himetricPerInch = 2540;

struct Resolution {
    int x = 96;
    int y = 96;
};

Resolution screenResolution() noexcept {
    Resolution result;
    if (const ScreenContext screen(::GetDC(nullptr)); screen)
        result = {::GetDeviceCaps(screen.get(), LOGPIXELSX),
                  ::GetDeviceCaps(screen.get(), LOGPIXELSY)};
    return result;
}

} // namespace

SIZE himetricFromPixels(SIZE pixels) noexcept {
    const Resolution dpi = screenResolution();
    return {::MulDiv(pixels.cx, himetricPerInch, dpi.x),
            ::MulDiv(pixels.cy, himetricPerInch, dpi.y)};
}

SIZE pixelsFromHimetric(SIZE himetric) noexcept {
    const Resolution dpi = screenResolution();
    return {::MulDiv(himetric.cx, dpi.x, himetricPerInch),
            ::MulDiv(himetric.cy, dpi.y, himetricPerInch)};
}

SIZE devicePixels(SIZE himetric, const DeviceSize& device) noexcept {
    constexpr int himetricPerMillimetre = 100;
    return {::MulDiv(himetric.cx, device.pixels.cx, device.millimetres.cx * himetricPerMillimetre),
            ::MulDiv(himetric.cy, device.pixels.cy, device.millimetres.cy * himetricPerMillimetre)};
}

void ControlSite::set(IOleClientSite* site) noexcept {
    site_ = ComPtr<IOleClientSite>(site);
}

bool ControlSite::ambient(DISPID id, VARIANT& value) const noexcept {
    const auto dispatch = site_.query<IDispatch>();
    if (!dispatch)
        return false;
    DISPPARAMS none{};
    return SUCCEEDED(dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                      &none, &value, nullptr, nullptr));
}

bool ControlSite::userMode() const noexcept {
    Variant value;
    const bool known = ambient(DISPID_AMBIENT_USERMODE, value) && value.changeTo(VT_BOOL);
    return !known || V_BOOL(&value) != VARIANT_FALSE;
}

COLORREF ControlSite::background() const noexcept {
    Variant value;
    COLORREF result = ::GetSysColor(COLOR_WINDOW);
    if (ambient(DISPID_AMBIENT_BACKCOLOR, value))
        if (const auto color = numberOf(value))
            ::OleTranslateColor(static_cast<OLE_COLOR>(*color), nullptr, &result);
    return result;
}

SIZE ControlSite::himetricFromUnits(SIZE units) const noexcept {
    if (const auto control = site_.query<IOleControlSite>()) {
        POINTL himetric{};
        POINTF container{static_cast<float>(units.cx), static_cast<float>(units.cy)};
        if (SUCCEEDED(control->TransformCoords(
                &himetric, &container, XFORMCOORDS_SIZE | XFORMCOORDS_CONTAINERTOHIMETRIC)) &&
            himetric.x > 0 && himetric.y > 0)
            return {himetric.x, himetric.y};
    }
    return himetricFromPixels(units);
}

bool ControlSite::translateAccelerator(const MSG& message) const noexcept {
    enum Modifier : DWORD { shift = 1, control = 2, alt = 4 };
    const auto site = site_.query<IOleControlSite>();
    if (!site)
        return false;
    const auto held = [](int key, Modifier modifier) {
        return ::GetKeyState(key) < 0 ? DWORD{modifier} : 0;
    };
    MSG copy = message;
    return site->TranslateAccelerator(&copy, held(VK_SHIFT, shift) | held(VK_CONTROL, control) |
                                                 held(VK_MENU, alt)) == S_OK;
}

void ControlSite::notifyFocus(bool focused) const noexcept {
    if (const auto control = site_.query<IOleControlSite>())
        control->OnFocus(focused ? TRUE : FALSE);
}

} // namespace corvina
