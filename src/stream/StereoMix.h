#pragma once

// How many channels become two: the weight of each channel left and right. What is at one side goes
// to that side at full level, what is in the middle to both and what is behind to its side 3 dB
// lower. The channel of low effects is left out.

#include <cstdint>
#include <vector>
#include <windows.h>

namespace corvina {

struct StereoWeights {
    double left = 0;
    double right = 0;
};

// The SPEAKER_ bit of each channel, by a mask of such bits in the order of the channels; without a
// mask the usual ones for that many channels. A channel beyond the mask has none, 0.
[[nodiscard]] std::vector<DWORD> speakersOf(std::int32_t channels, DWORD mask = 0);

// The weights of a side add up to 1 at most, so that nothing can become too loud. A channel without
// a speaker is heard on both sides.
[[nodiscard]] std::vector<StereoWeights> stereoWeights(const std::vector<DWORD>& speakers);

} // namespace corvina
