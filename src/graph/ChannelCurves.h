#pragma once

// The waveform of each channel by itself, one below the other.

#include "stream/SampleFeed.h"

#include <vector>
#include <windows.h>

namespace corvina {

// A line for each channel, from the left edge to the right edge of a surface of that size in
// pixels. Positive samples are drawn above the middle of the channel's part. With more frames than
// pixels a column reaches from the lowest to the highest of its samples. Channels without two
// pixels of height are left out.
[[nodiscard]] std::vector<std::vector<POINT>> channelCurves(const SampleBlock& block, SIZE size);

} // namespace corvina
