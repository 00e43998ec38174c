#pragma once

// Rounds samples to 16 bits. A sample that 16 bits hold exactly comes out as it is; to every other
// one triangular noise of one step to either side is added first, so that the error is noise and
// never distortion. Nothing wraps around: what is too loud becomes the loudest sample.

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
        const std::uint32_t noise = next();
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
        constexpr std::size_t eight = 8;
        auto* const lanes = reinterpret_cast<__m128i*>(lanes_);
        __m128i noise = _mm_loadu_si128(lanes);
        std::size_t done = 0;
        for (; done + eight <= count; done += eight) {
            const __m128i first = roundFour(load(from), noise);
            const __m128i second = roundFour(load(from + fourBytes), noise);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packs_epi32(first, second));
            from += 2 * fourBytes;
            to += eight * sizeof(std::int16_t);
        }
        _mm_storeu_si128(lanes, noise);
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
    // Marsaglia's xorshift: the same noise in every run.
    [[nodiscard]] std::uint32_t next() noexcept {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }

    [[nodiscard]] static __m128i roundFour(__m128i samples, __m128i& noise) noexcept {
        noise = _mm_xor_si128(noise, _mm_slli_epi32(noise, 13));
        noise = _mm_xor_si128(noise, _mm_srli_epi32(noise, 17));
        noise = _mm_xor_si128(noise, _mm_slli_epi32(noise, 5));
        const __m128i below = _mm_set1_epi32(0xFFFF);
        const __m128i added =
            _mm_add_epi32(_mm_add_epi32(_mm_and_si128(noise, below), _mm_srli_epi32(noise, 16)),
                          _mm_set1_epi32(0x8000 - 0xFFFF));
        // The upper 16 bits are kept apart, so that no sum overflows.
        const __m128i rest = _mm_and_si128(samples, below);
        const __m128i carry = _mm_srai_epi32(_mm_add_epi32(rest, added), 16);
        const __m128i exact = _mm_cmpeq_epi32(rest, _mm_setzero_si128());
        return _mm_add_epi32(_mm_srai_epi32(samples, 16), _mm_andnot_si128(exact, carry));
    }

    std::uint32_t state_ = 2463534242U;
    std::uint32_t lanes_[4] = {0x05491333, 0x159A55E5, 0x075BCD15, 0x1F123BB5};
};

} // namespace corvina
