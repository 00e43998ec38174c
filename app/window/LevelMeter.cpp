#include "window/LevelMeter.h"

#include "window/ChildControls.h"

#include <algorithm>
#include <cmath>

namespace corvina::app {

namespace {

constexpr double quietestDecibels = -48;
constexpr double yellowFrom = -9;
constexpr double redFrom = -3;
constexpr int segments = 24; // each of two decibels
constexpr COLORREF background = RGB(18, 20, 26);
constexpr COLORREF unlit = RGB(44, 48, 58);

double decibelsOf(long level) {
    return level > 0 ? 20 * std::log10(static_cast<double>(level) / 100) : quietestDecibels;
}

COLORREF colorOf(double decibels) {
    if (decibels >= redFrom)
        return RGB(229, 83, 75);
    return decibels >= yellowFrom ? RGB(232, 194, 80) : RGB(86, 196, 120);
}

void fill(HDC dc, const RECT& area, COLORREF color) {
    SetDCBrushColor(dc, color);
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

} // namespace

LevelMeter::LevelMeter(HWND parent) : PaintedWindow(parent) {
    setAccessibleName(window(), L"Level");
}

void LevelMeter::show(long left, long right) {
    const std::array levels{left, right};
    if (std::exchange(levels_, levels) != levels)
        redraw();
}

void LevelMeter::paint(HDC dc, const RECT& area) {
    fill(dc, area, background);
    const int border = std::max(1L, area.bottom / 12);
    const int width = area.right - 2 * border;
    const int height = (area.bottom - 3 * border) / 2;
    for (std::size_t channel = 0; channel < levels_.size(); ++channel) {
        const double level = decibelsOf(levels_[channel]);
        const int top = border + static_cast<int>(channel) * (height + border);
        for (int segment = 0; segment < segments; ++segment) {
            const double from = quietestDecibels - quietestDecibels * segment / segments;
            const RECT bar{border + width * segment / segments, top,
                           border + width * (segment + 1) / segments - std::max(1, border / 2),
                           top + height};
            fill(dc, bar, level > from ? colorOf(from) : unlit);
        }
    }
}

} // namespace corvina::app
