#include "window/PlayerControls.h"

#include <algorithm>

#include <commctrl.h>

namespace corvina::app {

PlayerControls::PlayerControls(HWND parent)
    : controls_(parent), headline_(controls_), seekBar_(controls_), transport_(controls_),
      equalizer_(controls_), list_(controls_),
      message_(controls_.add(STATUSCLASSNAMEW, L"", SBARS_SIZEGRIP)) {}

SIZE PlayerControls::leastSize() const {
    constexpr int width = 400;
    constexpr int height = 330;
    constexpr int withCover = 32;
    constexpr int withEqualizer = 170;
    return {scaled(width), scaled(height + (headline_.cover().hasPicture() ? withCover : 0) +
                                  (equalizer_.isShown() ? withEqualizer : 0))};
}

RECT PlayerControls::layOut() {
    const HWND parent = controls_.parent();
    RECT area{};
    GetClientRect(parent, &area);
    SendMessageW(message_, WM_SIZE, 0, 0); // puts itself at the bottom
    RECT bar{};
    GetWindowRect(message_, &bar);

    const int margin = scaled(10);
    const int gap = scaled(6);
    const int left = margin;
    const int width = std::max(0L, area.right - 2 * margin);
    const int bottom = area.bottom - (bar.bottom - bar.top) - margin;

    // The rows between graph and list have the height they need; it is known once they are placed.
    const auto placeRows = [&](int top) {
        int y = top;
        y += headline_.layOut(left, y, width) + gap;
        y += seekBar_.layOut(left, y, width) + gap;
        y += transport_.layOut(left, y, width) + scaled(10);
        if (const int height = equalizer_.layOut(left, y, width); height > 0)
            y += height + scaled(8);
        return y - top;
    };
    const int rows = placeRows(0);
    const int leastGraph = scaled(40);
    const int rest = bottom - margin - gap - rows;
    const int graphHeight = std::clamp(rest * 11 / 20, leastGraph, std::max(leastGraph, rest));
    const int listTop = margin + graphHeight + gap + placeRows(margin + graphHeight + gap);
    place(list_.window(), left, listTop, width, bottom - listTop);
    RedrawWindow(parent, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    return {left, margin, left + width, margin + graphHeight};
}

} // namespace corvina::app
