#include "stream/WideRounding.h"

#include <immintrin.h>

// The rest of the module is compiled for processors without these instructions. Each function here
// says that it needs them; a compiler that takes them anywhere needs no such word.
#ifdef __GNUC__
#define CORVINA_AVX2 __attribute__((target("avx2")))
#else
#define CORVINA_AVX2
#endif

namespace corvina {
namespace {

// Of each block the samples of one half, and as many bytes from one half to the other.
constexpr std::size_t half = 4 * NoiseLanes::stepsAhead;

template <SampleForm form>
constexpr std::size_t halfBytes = half* bytesOf(form);

// 16 bytes of the first half in the lower lanes and of the second half in the upper ones.
CORVINA_AVX2 inline __m256i loadBytes(const std::uint8_t* first,
                                      const std::uint8_t* second) noexcept {
    const __m128i lower = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    const __m128i upper = _mm_loadu_si128(reinterpret_cast<const __m128i*>(second));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(lower), upper, 1);
}

// Of 16 bytes the first twelve: four samples, each in the upper bytes of its place.
CORVINA_AVX2 inline __m256i spreadThreeByteSamples(__m256i bytes) noexcept {
    constexpr char none = -1;
    return _mm256_shuffle_epi8(bytes, _mm256_setr_epi8(none, 0, 1, 2, none, 3, 4, 5, none, 6, 7, 8,
                                                       none, 9, 10, 11, none, 0, 1, 2, none, 3, 4,
                                                       5, none, 6, 7, 8, none, 9, 10, 11));
}

// What is too loud becomes the greatest number that fits. What is too low comes out as the lowest
// one, and what is no number as 0.
CORVINA_AVX2 inline __m256i fromFloats(__m256 samples) noexcept {
    const __m256 numbers = _mm256_and_ps(samples, _mm256_cmp_ps(samples, samples, _CMP_ORD_Q));
    const __m256 scaled = _mm256_mul_ps(numbers, _mm256_set1_ps(2147483648.0F));
    return _mm256_cvttps_epi32(_mm256_min_ps(scaled, _mm256_set1_ps(2147483520.0F)));
}

CORVINA_AVX2 inline __m128i fromDoubles(const std::uint8_t* bytes) noexcept {
    const __m256d samples = _mm256_loadu_pd(reinterpret_cast<const double*>(bytes));
    const __m256d numbers = _mm256_and_pd(samples, _mm256_cmp_pd(samples, samples, _CMP_ORD_Q));
    const __m256d scaled = _mm256_mul_pd(numbers, _mm256_set1_pd(2147483648.0));
    return _mm256_cvttpd_epi32(_mm256_min_pd(scaled, _mm256_set1_pd(2147483647.0)));
}

// Four samples of each half.
template <SampleForm form>
CORVINA_AVX2 inline __m256i loadFour(const std::uint8_t* bytes, __m256i valid) noexcept {
    const std::uint8_t* const second = bytes + halfBytes<form>;
    if constexpr (form == SampleForm::integer24)
        return _mm256_and_si256(spreadThreeByteSamples(loadBytes(bytes, second)), valid);
    else if constexpr (form == SampleForm::integer32)
        return _mm256_and_si256(loadBytes(bytes, second), valid);
    else if constexpr (form == SampleForm::float32)
        return fromFloats(_mm256_castsi256_ps(loadBytes(bytes, second)));
    else
        return _mm256_inserti128_si256(_mm256_castsi128_si256(fromDoubles(bytes)),
                                       fromDoubles(second), 1);
}

// A step of all generators.
CORVINA_AVX2 inline __m256i nextNoise(__m256i states) noexcept {
    states = _mm256_xor_si256(states, _mm256_slli_epi32(states, 13));
    states = _mm256_xor_si256(states, _mm256_srli_epi32(states, 17));
    return _mm256_xor_si256(states, _mm256_slli_epi32(states, 5));
}

// See roundFour in NarrowRounding.cpp.
CORVINA_AVX2 inline __m256i roundFour(__m256i samples, __m256i noise) noexcept {
    const __m256i rest = _mm256_and_si256(samples, _mm256_set1_epi32(0xFFFF));
    const __m256i inexact = _mm256_cmpgt_epi32(rest, _mm256_setzero_si256());
    const __m256i added =
        _mm256_madd_epi16(_mm256_xor_si256(noise, _mm256_set1_epi16(0x7FFF)), inexact);
    const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(rest, _mm256_set1_epi32(0x7FFF)), added);
    return _mm256_srai_epi32(_mm256_adds_epi16(samples, sum), 16);
}

// Eight samples of each half.
CORVINA_AVX2 inline void storeBoth(std::uint8_t* to, __m256i samples) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(samples));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + half * sizeof(std::int16_t)),
                     _mm256_extracti128_si256(samples, 1));
}

template <SampleForm form>
CORVINA_AVX2 std::size_t roundBlocks(const std::uint8_t* from, std::uint8_t* to, std::size_t count,
                                     std::uint32_t validBits, NoiseStates& states) noexcept {
    const __m256i valid = _mm256_set1_epi32(static_cast<std::int32_t>(validBits));
    NoiseLanes ofBlock(states);
    std::size_t done = 0;
    for (; done + 2 * half <= count; done += 2 * half) {
        __m256i noise = _mm256_inserti128_si256(_mm256_castsi128_si256(ofBlock.vector()),
                                                ofBlock.ahead().vector(), 1);
        for (std::size_t at = done; at < done + half; at += 8) {
            const std::uint8_t* const source = from + at * bytesOf(form);
            noise = nextNoise(noise);
            const __m256i first = roundFour(loadFour<form>(source, valid), noise);
            noise = nextNoise(noise);
            const __m256i second =
                roundFour(loadFour<form>(source + 4 * bytesOf(form), valid), noise);
            storeBoth(to + at * sizeof(std::int16_t), _mm256_packs_epi32(first, second));
        }
        ofBlock = NoiseLanes(_mm256_extracti128_si256(noise, 1));
    }
    states = ofBlock.states();
    return done;
}

} // namespace

std::size_t roundWide(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                      std::size_t count, std::uint32_t valid, NoiseStates& noise) noexcept {
    switch (form) {
    case SampleForm::integer24: {
        // The last four are read with the four bytes behind them.
        constexpr std::size_t behind = 2;
        return count < behind
                   ? 0
                   : roundBlocks<SampleForm::integer24>(from, to, count - behind, valid, noise);
    }
    case SampleForm::integer32:
        return roundBlocks<SampleForm::integer32>(from, to, count, valid, noise);
    case SampleForm::float32:
        return roundBlocks<SampleForm::float32>(from, to, count, valid, noise);
    case SampleForm::float64:
        return roundBlocks<SampleForm::float64>(from, to, count, valid, noise);
    }
    return 0;
}

} // namespace corvina
