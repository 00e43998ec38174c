#include "stream/NarrowRounding.h"

namespace corvina {
namespace {

__m128i loadBytes(const std::uint8_t* bytes) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// Four of three bytes, each in the upper ones of its place. The byte behind them is read too.
__m128i loadThreeByteSamples(const std::uint8_t* bytes) noexcept {
    const __m128i first = _mm_unpacklo_epi32(_mm_loadu_si32(bytes), _mm_loadu_si32(bytes + 3));
    const __m128i second = _mm_unpacklo_epi32(_mm_loadu_si32(bytes + 6), _mm_loadu_si32(bytes + 9));
    return _mm_slli_epi32(_mm_unpacklo_epi64(first, second), 8);
}

// What is too loud becomes the greatest number that fits. What is too low comes out as the lowest
// one, and what is no number as 0.
__m128i fromFloats(__m128 samples) noexcept {
    const __m128 numbers = _mm_and_ps(samples, _mm_cmpord_ps(samples, samples));
    const __m128 scaled = _mm_mul_ps(numbers, _mm_set1_ps(2147483648.0F));
    return _mm_cvttps_epi32(_mm_min_ps(scaled, _mm_set1_ps(2147483520.0F)));
}

// The same, two of them in the lower half.
__m128i fromDoubles(__m128d samples) noexcept {
    const __m128d numbers = _mm_and_pd(samples, _mm_cmpord_pd(samples, samples));
    const __m128d scaled = _mm_mul_pd(numbers, _mm_set1_pd(2147483648.0));
    return _mm_cvttpd_epi32(_mm_min_pd(scaled, _mm_set1_pd(2147483647.0)));
}

template <SampleForm form>
__m128i loadFour(const std::uint8_t* bytes, __m128i valid) noexcept {
    if constexpr (form == SampleForm::integer24)
        return _mm_and_si128(loadThreeByteSamples(bytes), valid);
    else if constexpr (form == SampleForm::integer32)
        return _mm_and_si128(loadBytes(bytes), valid);
    else if constexpr (form == SampleForm::float32)
        return fromFloats(_mm_castsi128_ps(loadBytes(bytes)));
    else
        return _mm_unpacklo_epi64(fromDoubles(_mm_castsi128_pd(loadBytes(bytes))),
                                  fromDoubles(_mm_castsi128_pd(loadBytes(bytes + 16))));
}

// What stays of each is the lower half of its lane's upper half.
__m128i roundFour(__m128i samples, __m128i noise) noexcept {
    const __m128i rest = _mm_and_si128(samples, _mm_set1_epi32(0xFFFF));
    const __m128i inexact = _mm_cmpgt_epi32(rest, _mm_setzero_si128());
    // With one uniform number u in each half the sum of both less 0xFFFE: as signed numbers the
    // halves are 0x7FFF - u, and they are multiplied by -1, or 0 if the sample is exact.
    const __m128i added = _mm_madd_epi16(_mm_xor_si128(noise, _mm_set1_epi16(0x7FFF)), inexact);
    const __m128i sum = _mm_add_epi32(_mm_add_epi32(rest, _mm_set1_epi32(0x7FFF)), added);
    // Halves are added apart, so that no sum overflows; the lower ones are dropped.
    return _mm_srai_epi32(_mm_adds_epi16(samples, sum), 16);
}

template <SampleForm form>
std::size_t roundForm(const std::uint8_t* from, std::uint8_t* to, std::size_t count,
                      std::uint32_t validBits, NoiseStates& states) noexcept {
    const __m128i valid = _mm_set1_epi32(static_cast<std::int32_t>(validBits));
    const auto roundEight = [=](std::size_t at, NoiseLanes& noise) {
        const std::uint8_t* const source = from + at * bytesOf(form);
        const __m128i first = roundFour(loadFour<form>(source, valid), noise.next());
        const __m128i second =
            roundFour(loadFour<form>(source + 4 * bytesOf(form), valid), noise.next());
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at * sizeof(std::int16_t)),
                         _mm_packs_epi32(first, second));
    };
    // Two halves of a block at a time, so that the noise of neither is waited for.
    constexpr std::size_t half = 4 * NoiseLanes::stepsAhead;
    NoiseLanes noise(states);
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
    states = noise.states();
    return done;
}

} // namespace

std::size_t roundNarrow(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                        std::size_t count, std::uint32_t valid, NoiseStates& noise) noexcept {
    switch (form) {
    case SampleForm::integer24:
        return count == 0 ? 0 : roundForm<SampleForm::integer24>(from, to, count - 1, valid, noise);
    case SampleForm::integer32:
        return roundForm<SampleForm::integer32>(from, to, count, valid, noise);
    case SampleForm::float32:
        return roundForm<SampleForm::float32>(from, to, count, valid, noise);
    case SampleForm::float64:
        return roundForm<SampleForm::float64>(from, to, count, valid, noise);
    }
    return 0;
}

} // namespace corvina
