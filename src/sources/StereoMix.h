#pragma once

// Mixes sound of more than two channels down to stereo: what is at the left goes to the left at
// full level, what is in the middle to both sides and what is behind to its side at 0.7 of it, and
// all of it so much quieter that nothing is clipped. The channel for low frequencies is left out.

#include <cstddef>
#include <cstdint>
#include <vector>
#include <windows.h>

namespace corvina {

class StereoMix {
public:
    StereoMix() = default;
    // speakers: one SPEAKER_ bit for each channel, in the order of the samples. A channel without
    // one is heard on both sides.
    explicit StereoMix(const std::vector<DWORD>& speakers);

    // The channels of a format record with this mask; without one, those that are usual for the
    // count.
    [[nodiscard]] static std::vector<DWORD> speakersOf(std::size_t channels, DWORD mask = 0);

    // from: frames of all channels. to: as many of two.
    void apply(const std::int16_t* from, std::int16_t* to, std::size_t frames) const;

private:
    struct Share {
        float left = 0;
        float right = 0;
    };
    [[nodiscard]] static Share shareOf(DWORD speaker);

    std::vector<Share> shares_; // by channel
};

} // namespace corvina
