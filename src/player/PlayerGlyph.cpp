#include "player/PlayerGlyph.h"

#include <algorithm>
#include <array>

namespace corvina {
namespace {

constexpr int glyphUnits = 16;  // the drawing's own grid
constexpr int glyphPixels = 32; // its largest size

// The loudspeaker's outline and two sound waves on a grid of 16 by 16.
constexpr std::array<POINT, 6> speaker{{{1, 6}, {4, 6}, {8, 2}, {8, 14}, {4, 10}, {1, 10}}};
constexpr std::array<POINT, 3> nearWave{{{10, 5}, {12, 8}, {10, 11}}};
constexpr std::array<POINT, 3> farWave{{{12, 3}, {15, 8}, {12, 13}}};

template <std::size_t Count>
std::array<POINT, Count> placed(const std::array<POINT, Count>& points, POINT origin, int size) {
    auto result = points;
    for (POINT& point : result)
        point = {origin.x + ::MulDiv(point.x, size, glyphUnits),
                 origin.y + ::MulDiv(point.y, size, glyphUnits)};
    return result;
}

} // namespace

void drawPlayerGlyph(HDC dc, const RECT& bounds, COLORREF background, bool designing) {
    ::SetDCBrushColor(dc, background);
    ::FillRect(dc, &bounds, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
    if (!designing)
        return;

    const int width = static_cast<int>(bounds.right - bounds.left);
    const int height = static_cast<int>(bounds.bottom - bounds.top);
    const int size = std::min({width, height, glyphPixels});
    const POINT origin{bounds.left + (width - size) / 2, bounds.top + (height - size) / 2};
    const HGDIOBJ oldPen = ::SelectObject(dc, ::GetStockObject(BLACK_PEN));
    const HGDIOBJ oldBrush = ::SelectObject(dc, ::GetStockObject(GRAY_BRUSH));
    ::Rectangle(dc, bounds.left, bounds.top, bounds.right, bounds.bottom);
    const auto body = placed(speaker, origin, size);
    ::SelectObject(dc, ::GetStockObject(WHITE_BRUSH));
    ::Polygon(dc, body.data(), static_cast<int>(body.size()));
    for (const auto& wave : {nearWave, farWave}) {
        const auto line = placed(wave, origin, size);
        ::Polyline(dc, line.data(), static_cast<int>(line.size()));
    }
    ::SelectObject(dc, oldBrush);
    ::SelectObject(dc, oldPen);
}

} // namespace corvina
