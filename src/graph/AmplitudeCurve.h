#pragma once

// The waveform as a line with one point for each column.

#include "graph/SampleBuffer.h"

#include <functional>
#include <vector>
#include <windows.h>

namespace corvina {

// The corners of the line on a surface of that size in pixels; none if the surface is empty.
// beforeColumn is called before each column and may change the samples; the columns that follow are
// then computed from the changed ones.
//
// Positive samples are drawn below the middle. The line is twice as wide as the surface, so only
// the first half of the columns is visible; the last two corners lie beyond the right edge. Both
// are deliberate: hosts know the picture so.
[[nodiscard]] std::vector<POINT> amplitudeCurve(
    const SampleBuffer& samples, SIZE size, const std::function<void()>& beforeColumn = [] {});

} // namespace corvina
