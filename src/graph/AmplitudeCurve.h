#pragma once

// The waveform as a line through one point a column.

#include "graph/SampleBuffer.h"

#include <functional>
#include <vector>
#include <windows.h>

namespace corvina {

// The corners of the line on a surface of that size in pixels, the first one its start; none where
// the surface is empty. beforeColumn is called before each column and may change the samples, from
// which the columns that follow are then made.
//
// Positive samples are drawn below the middle. The line is twice as wide as the surface, so that
// only the first half of the columns is seen; the last two corners lie beyond the right edge.
[[nodiscard]] std::vector<POINT> amplitudeCurve(
    const SampleBuffer& samples, SIZE size, const std::function<void()>& beforeColumn = [] {});

} // namespace corvina
