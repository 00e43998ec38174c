#include "graph/Painting.h"

#include "platform/GdiHandles.h"
#include "runtime/Rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace corvina {
namespace {

LONG scaled(LONG value, LONG from, LONG to) noexcept {
    return from == to || from <= 0 ? value : ::MulDiv(value, to, from);
}

// The corners up to and including the first beyond the picture's right edge; the curve runs from
// left to right. Metafiles with 16-bit coordinates could not hold the rest.
std::span<const POINT> visiblePart(std::span<const POINT> corners, LONG width) noexcept {
    const auto out = std::ranges::find_if(corners, [&](POINT corner) { return corner.x >= width; });
    const auto count = static_cast<std::size_t>(out - corners.begin());
    return corners.first(std::min(count + 1, corners.size()));
}

// Fills a part of each bar's rectangle, as far as it lies in the picture.
template <typename PartOf>
void fillEachBar(HDC dc, const Frame& frame, std::span<const double> levels,
                 const GraphSettings& settings, PartOf partOf) {
    const Brush brush{::CreateSolidBrush(settings.freqColor)};
    if (!brush)
        return;
    const auto [width, height] = frame.picture();
    for (std::size_t band = 0; band < levels.size(); ++band) {
        RECT bar = partOf(barRectangle(static_cast<int>(band), levels[band], settings, height));
        bar.left = std::max(bar.left, LONG{0});
        bar.right = std::min(bar.right, width);
        if (bar.left < bar.right && bar.top < bar.bottom) {
            const RECT area = frame.at(bar);
            ::FillRect(dc, &area, brush.get());
        }
    }
}

} // namespace

POINT Frame::at(LONG x, LONG y) const noexcept {
    return {bounds_.left + scaled(x, picture_.cx, bounds_.right - bounds_.left),
            bounds_.top + scaled(y, picture_.cy, bounds_.bottom - bounds_.top)};
}

RECT Frame::at(const RECT& part) const noexcept {
    const POINT first = at(part.left, part.top);
    const POINT last = at(part.right, part.bottom);
    // Bounds may run from right to left or from bottom to top.
    return {std::min(first.x, last.x), std::min(first.y, last.y), std::max(first.x, last.x),
            std::max(first.y, last.y)};
}

int Frame::lineWidth() const noexcept {
    const LONG across = std::abs(bounds_.right - bounds_.left);
    return std::max(1, static_cast<int>(scaled(1, picture_.cx, across)));
}

void fill(HDC dc, const RECT& area, COLORREF color) noexcept {
    if (const Brush brush{::CreateSolidBrush(color)})
        ::FillRect(dc, &area, brush.get());
}

RECT barRectangle(int band, double level, const GraphSettings& settings, LONG height) {
    const std::int64_t pitch = std::int64_t{settings.bandsWidth} + settings.bandsSpace;
    const std::int64_t left = band * pitch;
    const std::int64_t right = left + settings.bandsWidth;
    if (right <= left || left < std::numeric_limits<LONG>::min() ||
        right > std::numeric_limits<LONG>::max())
        return {};
    const LONG top = roundToInt32(height - level * height);
    return {static_cast<LONG>(left), top, static_cast<LONG>(right), height};
}

void paintBars(HDC dc, const Frame& frame, std::span<const double> levels,
               const GraphSettings& settings) {
    fillEachBar(dc, frame, levels, settings, [](RECT bar) { return bar; });
}

void paintPeaks(HDC dc, const Frame& frame, std::span<const double> levels,
                const GraphSettings& settings) {
    constexpr LONG markHeight = 2;
    fillEachBar(dc, frame, levels, settings, [](RECT bar) {
        bar.bottom = std::min(bar.bottom, bar.top + markHeight);
        return bar;
    });
}

void paintCurve(HDC dc, const Frame& frame, std::span<const POINT> corners, COLORREF color) {
    const Pen pen{::CreatePen(PS_SOLID, frame.lineWidth(), color)};
    if (!pen)
        return;
    std::vector<POINT> placed;
    for (const POINT corner : visiblePart(corners, frame.picture().cx))
        placed.push_back(frame.at(corner.x, corner.y));
    const SelectedObject selected(dc, pen.get());
    ::Polyline(dc, placed.data(), static_cast<int>(placed.size()));
}

void paintBorder(HDC dc, const Frame& frame) noexcept {
    const auto [width, height] = frame.picture();
    // A shade that stands out from a dark picture as well as from a light form.
    const COLORREF color = ::GetSysColor(COLOR_3DSHADOW);
    constexpr LONG line = borderPixels;
    for (const RECT& side : {RECT{0, 0, width, line}, RECT{0, height - line, width, height},
                             RECT{0, 0, line, height}, RECT{width - line, 0, width, height}})
        fill(dc, frame.at(side), color);
}

} // namespace corvina
