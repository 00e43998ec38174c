#pragma once

// Rounds samples to 16 bits. A sample that 16 bits hold exactly comes out as it is; to every other
// one triangular noise of one step to either side is added first, so that the error is noise and
// never distortion. Nothing wraps around: what is too loud becomes the loudest sample.

#include "stream/NoiseLanes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>
#include <limits>

namespace corvina {

class SampleRounding {
public:
    // A sample of 32 bits, of which the upper 16 stay.
    [[nodiscard]] std::int16_t round(std::int32_t sample) noexcept {
        constexpr std::int32_t below = 0xFFFF;
        if ((sample & below) == 0)
            return static_cast<std::int16_t>(sample >> 16);
        state_ = nextNoise(state_);
        const std::uint32_t noise = state_;
        // Two uniform numbers of 16 bits less one step, and half a step to round to nearest.
        const std::int32_t added =
            static_cast<std::int32_t>((noise & below) + (noise >> 16)) - below + 0x8000;
        const std::int64_t sum = (std::int64_t{sample} + added) >> 16;
        return static_cast<std::int16_t>(
            std::clamp(sum, std::int64_t{std::numeric_limits<std::int16_t>::min()},
                       std::int64_t{std::numeric_limits<std::int16_t>::max()}));
    }

    // Many of them, eight at a time: the same but for the noise, of which every lane has its own.
    // load(from) makes four samples of the fourBytes bytes there. Neither address need be aligned.
    // What is left over, fewer than eight samples, is the caller's; the number of those that are
    // done.
    template <typename Load>
    [[nodiscard]] std::size_t roundMany(const std::uint8_t* from, std::uint8_t* to,
                                        std::size_t count, std::size_t fourBytes,
                                        Load load) noexcept {
        auto* const lanes = reinterpret_cast<__m128i*>(lanes_);
        NoiseLanes noise(_mm_loadu_si128(lanes));
        const auto roundEight = [=](std::size_t at, NoiseLanes& with) {
            const std::uint8_t* const source = from + at / 4 * fourBytes;
            const __m128i first = roundFour(load(source), with.next());
            const __m128i second = roundFour(load(source + fourBytes), with.next());
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at * sizeof(std::int16_t)),
                             _mm_packs_epi32(first, second));
        };
        // Two halves of a block at a time, so that the noise of neither is waited for.
        constexpr std::size_t half = 4 * NoiseLanes::stepsAhead;
        std::size_t done = 0;
        for (; done + 2 * half <= count; done += 2 * half) {
            NoiseLanes ofSecondHalf = noise.ahead();
            for (std::size_t at = done; at < done + half; at += 8) {
                roundEight(at, noise);
                roundEight(at + half, ofSecondHalf);
            }
            noise = ofSecondHalf;
        }
        for (; done + 8 <= count; done += 8)
            roundEight(done, noise);
        _mm_storeu_si128(lanes, noise.states());
        return done;
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
    // What stays of each is the lower half of its lane's upper half.
    [[nodiscard]] static __m128i roundFour(__m128i samples, __m128i noise) noexcept {
        const __m128i rest = _mm_and_si128(samples, _mm_set1_epi32(0xFFFF));
        const __m128i inexact = _mm_cmpgt_epi32(rest, _mm_setzero_si128());
        // With one uniform number u in each half the sum of both less 0xFFFE: as signed numbers the
        // halves are 0x7FFF - u, and they are multiplied by -1, or 0 if the sample is exact.
        const __m128i added = _mm_madd_epi16(_mm_xor_si128(noise, _mm_set1_epi16(0x7FFF)), inexact);
        const __m128i sum = _mm_add_epi32(_mm_add_epi32(rest, _mm_set1_epi32(0x7FFF)), added);
        // Halves are added apart, so that no sum overflows; the lower ones are dropped.
        return _mm_srai_epi32(_mm_adds_epi16(samples, sum), 16);
    }

    std::uint32_t state_ = 2463534242U;
    std::uint32_t lanes_[4] = {0x05491333, 0x159A55E5, 0x075BCD15, 0x1F123BB5};
};

} // namespace corvina
