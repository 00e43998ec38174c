#pragma once

// Drawing the graph's elements onto any device context: a surface, a window, a printer, a metafile.
//
// Everything is measured in pixels of a picture. A Frame says which logical units of the device
// context that picture covers, so bars are as wide on paper as on the screen although a printer's
// dots are finer. What GDI refuses to draw is left out.

#include "graph/GraphSettings.h"

#include <span>
#include <windows.h>

namespace corvina {

class Frame {
public:
    // The picture of that size in pixels is stretched over the bounds.
    Frame(const RECT& bounds, SIZE picture) noexcept : bounds_(bounds), picture_(picture) {}
    // A picture drawn as it is, from the origin on.
    explicit Frame(SIZE picture) noexcept : Frame({0, 0, picture.cx, picture.cy}, picture) {}

    [[nodiscard]] const RECT& bounds() const noexcept { return bounds_; }
    [[nodiscard]] SIZE picture() const noexcept { return picture_; }
    [[nodiscard]] POINT at(LONG x, LONG y) const noexcept;
    [[nodiscard]] RECT at(const RECT& part) const noexcept;
    // Logical units of a line one pixel wide.
    [[nodiscard]] int lineWidth() const noexcept;

private:
    RECT bounds_;
    SIZE picture_;
};

void fill(HDC dc, const RECT& area, COLORREF color) noexcept;

// The rectangle of a bar in a picture of that height: bottom at the lower edge, top by its level,
// 0 ... 1. Empty if the width is not above 0 or the coordinates overflow.
[[nodiscard]] RECT barRectangle(int band, double level, const GraphSettings& settings, LONG height);

// The bars of the bands, one level each, on what is already there.
void paintBars(HDC dc, const Frame& frame, std::span<const double> levels,
               const GraphSettings& settings);

// A mark two pixels high where the top of a bar of that level would be; none for level 0.
void paintPeaks(HDC dc, const Frame& frame, std::span<const double> levels,
                const GraphSettings& settings);

// A line through the corners on what is already there.
void paintCurve(HDC dc, const Frame& frame, std::span<const POINT> corners, COLORREF color);

// A line along the inside of the area's edge.
void paintBorder(HDC dc, const Frame& frame) noexcept;

// How many pixels of a picture the border takes on each side.
inline constexpr LONG borderPixels = 1;

} // namespace corvina
