#pragma once

// Rounds samples to 16 bits. A sample that 16 bits hold exactly comes out as it is; to every other
// one triangular noise of one step to either side is added first, so that the error is noise and
// never distortion. Nothing wraps around: what is too loud becomes the loudest sample.

#include "stream/NoiseLanes.h"
#include "stream/SampleForm.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace corvina {

class SampleRounding {
public:
    // wide: uses the processor's vectors of 256 bits. What comes out does not depend on it.
    explicit SampleRounding(bool wide = hasWideVectors()) noexcept : wide_(wide) {}

    [[nodiscard]] static bool hasWideVectors() noexcept;

    // A sample of 32 bits, of which the upper 16 stay, with a random number of 32 bits: the
    // definition of the rounding. All other functions only do it faster, or many times.
    [[nodiscard]] static constexpr std::int16_t roundWith(std::uint32_t noise,
                                                          std::int32_t sample) noexcept {
        constexpr std::int32_t below = 0xFFFF;
        if ((sample & below) == 0)
            return static_cast<std::int16_t>(sample >> 16);
        // Two uniform numbers of 16 bits less one step, and half a step to round to nearest.
        const std::int32_t added =
            static_cast<std::int32_t>((noise & below) + (noise >> 16)) - below + 0x8000;
        const std::int64_t sum = (std::int64_t{sample} + added) >> 16;
        return static_cast<std::int16_t>(
            std::clamp(sum, std::int64_t{std::numeric_limits<std::int16_t>::min()},
                       std::int64_t{std::numeric_limits<std::int16_t>::max()}));
    }

    [[nodiscard]] std::int16_t round(std::int32_t sample) noexcept {
        if ((sample & 0xFFFF) != 0)
            state_ = nextNoise(state_);
        return roundWith(state_, sample);
    }

    // A sample whose full scale is 1; what is no number counts as silence.
    [[nodiscard]] std::int16_t round(double sample) noexcept { return round(toInteger(sample)); }

    // Many of them: the same but for the noise, which comes from four generators in turn. valid:
    // the bits of an integer that count. Neither address need be aligned. Some samples are left
    // over for the caller, nine at most; the number of those that are done.
    [[nodiscard]] std::size_t roundMany(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                                        std::size_t count, std::uint32_t valid) noexcept;

private:
    bool wide_;
    std::uint32_t state_ = 2463534242U;
    NoiseStates lanes_{0x05491333, 0x159A55E5, 0x075BCD15, 0x1F123BB5};
};

} // namespace corvina
