#pragma once

// Rounds samples to 16 bits. A sample that 16 bits hold exactly comes out as it is; to every other
// one triangular noise of one step to either side is added first, so that the error is noise and
// never distortion. Nothing wraps around: what is too loud becomes the loudest sample.

#include <algorithm>
#include <cstdint>
#include <limits>

namespace corvina {

class SampleRounding {
public:
    // A sample of 32 bits, of which the upper 16 stay.
    [[nodiscard]] std::int16_t round(std::int32_t sample) noexcept {
        constexpr std::int32_t below = 0xFFFF;
        if ((sample & below) == 0)
            return static_cast<std::int16_t>(sample >> 16);
        const std::uint32_t noise = next();
        // Two uniform numbers of 16 bits less one step, and half a step to round to nearest.
        const std::int32_t added =
            static_cast<std::int32_t>((noise & below) + (noise >> 16)) - below + 0x8000;
        const std::int64_t sum = (std::int64_t{sample} + added) >> 16;
        return static_cast<std::int16_t>(
            std::clamp(sum, std::int64_t{std::numeric_limits<std::int16_t>::min()},
                       std::int64_t{std::numeric_limits<std::int16_t>::max()}));
    }

    // A sample whose full scale is 1; what is no number counts as silence.
    [[nodiscard]] std::int16_t round(double sample) noexcept { return round(toInteger(sample)); }

    [[nodiscard]] static std::int32_t toInteger(double sample) noexcept {
        constexpr double fullScale = 2147483648.0;
        const double scaled = sample * fullScale;
        if (scaled >= fullScale - 1)
            return std::numeric_limits<std::int32_t>::max();
        if (scaled > -fullScale)
            return static_cast<std::int32_t>(scaled);
        return scaled <= -fullScale ? std::numeric_limits<std::int32_t>::min() : 0;
    }

private:
    // Marsaglia's xorshift: the same noise in every run.
    [[nodiscard]] std::uint32_t next() noexcept {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }

    std::uint32_t state_ = 2463534242U;
};

} // namespace corvina
