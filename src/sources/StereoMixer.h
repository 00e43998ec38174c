#pragma once

// Mixes decoded samples of more than two channels down to stereo.

#include "stream/StereoMix.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvina {

class StereoMixer {
public:
    StereoMixer() = default;
    // speakers: of each channel, in the order of the samples.
    explicit StereoMixer(const std::vector<DWORD>& speakers) : weights_(stereoWeights(speakers)) {}

    // from: frames of all channels. to: as many of two.
    void apply(const std::int16_t* from, std::int16_t* to, std::size_t frames) const;

private:
    std::vector<StereoWeights> weights_; // by channel
};

} // namespace corvina
