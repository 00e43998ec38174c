#pragma once

// How many channels become two: the weight of each channel left and right.

#include <cstdint>
#include <vector>

namespace corvina {

struct StereoWeights {
    double left = 0;
    double right = 0;
};

// mask: the SPEAKER_ bits of the channels in their order; 0 stands for the usual order of that many
// channels. The weights of a side add up to 1 at most, so that nothing can become too loud. The
// channel of low effects is left out.
[[nodiscard]] std::vector<StereoWeights> stereoMix(std::int32_t channels, std::uint32_t mask);

} // namespace corvina
