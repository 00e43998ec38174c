#pragma once

// Four independent generators of random numbers side by side: Marsaglia's xorshift, the same
// numbers in every run. A step needs the result of the one before it, so one sequence keeps the
// processor waiting; ahead() gives a later place of the sequence, at which a second loop can run at
// the same time.

#include <array>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

namespace corvina {

// One step of one generator.
[[nodiscard]] constexpr std::uint32_t nextNoise(std::uint32_t state) noexcept {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

// What each of four generators is at.
using NoiseStates = std::array<std::uint32_t, 4>;

class NoiseLanes {
public:
    // How far ahead() goes. The more steps, the less its own time matters.
    static constexpr std::size_t stepsAhead = 256;

    explicit NoiseLanes(__m128i vector) noexcept : states_(vector) {}
    explicit NoiseLanes(const NoiseStates& states) noexcept
        : states_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(states.data()))) {}

    [[nodiscard]] __m128i vector() const noexcept { return states_; }
    [[nodiscard]] NoiseStates states() const noexcept {
        NoiseStates states;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(states.data()), states_);
        return states;
    }

    // Four numbers of 32 bits.
    __m128i next() noexcept {
        states_ = _mm_xor_si128(states_, _mm_slli_epi32(states_, 13));
        states_ = _mm_xor_si128(states_, _mm_srli_epi32(states_, 17));
        states_ = _mm_xor_si128(states_, _mm_slli_epi32(states_, 5));
        return states_;
    }

    // The generators as they are after that many calls of next().
    [[nodiscard]] NoiseLanes ahead() const noexcept {
        __m128i bits = states_;
        __m128i result = _mm_setzero_si128();
        for (const std::uint32_t later : bitsLater) {
            const __m128i isSet = _mm_srai_epi32(bits, 31);
            const __m128i add = _mm_set1_epi32(static_cast<std::int32_t>(later));
            result = _mm_xor_si128(result, _mm_and_si128(isSet, add));
            bits = _mm_slli_epi32(bits, 1);
        }
        return NoiseLanes(result);
    }

private:
    // What each bit of a state, the highest first, becomes in so many steps. Steps only shift and
    // exclusive-or, so a state becomes the exclusive or of what its bits become.
    static constexpr std::array<std::uint32_t, 32> bitsLater = [] {
        std::array<std::uint32_t, 32> later{};
        for (std::size_t bit = 0; bit < later.size(); ++bit) {
            later[bit] = 0x80000000U >> bit;
            for (std::size_t step = 0; step < stepsAhead; ++step)
                later[bit] = nextNoise(later[bit]);
        }
        return later;
    }();

    __m128i states_;
};

} // namespace corvina
