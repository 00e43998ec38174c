#include "stream/LinearConversion.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

template <typename Number>
double floatAt(const std::uint8_t* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

__m128i loadFour(const std::uint8_t* bytes) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// Four of three bytes, each with the byte behind it on top.
__m128i loadFourOfThree(const std::uint8_t* bytes) noexcept {
    const __m128i first = _mm_unpacklo_epi32(_mm_loadu_si32(bytes), _mm_loadu_si32(bytes + 3));
    const __m128i second = _mm_unpacklo_epi32(_mm_loadu_si32(bytes + 6), _mm_loadu_si32(bytes + 9));
    return _mm_unpacklo_epi64(first, second);
}

// Four samples whose full scale is 1; what is no number counts as silence.
__m128i toIntegers(__m128 samples) noexcept {
    const __m128 numbers = _mm_and_ps(samples, _mm_cmpord_ps(samples, samples));
    const __m128 scaled = _mm_mul_ps(numbers, _mm_set1_ps(2147483648.0F));
    // What is too loud becomes the greatest number that fits. What is too low comes out as the
    // lowest one.
    return _mm_cvttps_epi32(_mm_min_ps(scaled, _mm_set1_ps(2147483520.0F)));
}

void store(std::int16_t sample, std::uint8_t* output) noexcept {
    std::memcpy(output, &sample, sizeof sample);
}

} // namespace

LinearConversion::LinearConversion(const LinearFormat& format, bool mixed) : format_(format) {
    if (mixed && format.channels > 2)
        weights_ = stereoWeights(speakersOf(format.channels, format.channelMask));
}

std::optional<std::uint32_t> LinearConversion::sourceBytes(std::uint32_t outputBytes) {
    return outputBytes / outputBlock() * static_cast<std::uint32_t>(format_.blockBytes());
}

// A sample with its most significant bit in bit 31.
std::int32_t LinearConversion::sampleAt(const std::uint8_t* bytes) const noexcept {
    if (format_.isFloat)
        return SampleRounding::toInteger(format_.sampleBytes == 4 ? floatAt<float>(bytes)
                                                                  : floatAt<double>(bytes));
    std::uint32_t bits = 0;
    for (std::int32_t byte = 0; byte < format_.sampleBytes; ++byte)
        bits = bits >> 8 | std::uint32_t{bytes[byte]} << 24;
    if (format_.sampleBytes == 1) // these alone are stored without a sign
        bits ^= 0x80000000U;
    return static_cast<std::int32_t>(bits & validMask());
}

void LinearConversion::roundSamples(const std::uint8_t* source, std::uint8_t* output,
                                    std::size_t count) noexcept {
    std::size_t done = 0;
    const auto bytes = static_cast<std::size_t>(format_.sampleBytes);
    if (format_.isFloat && bytes == 4) {
        done = rounding_.roundMany(source, output, count, 4 * bytes, [](const std::uint8_t* from) {
            return toIntegers(_mm_castsi128_ps(loadFour(from)));
        });
    } else if (!format_.isFloat && bytes == 4) {
        const __m128i valid = _mm_set1_epi32(static_cast<std::int32_t>(validMask()));
        done = rounding_.roundMany(
            source, output, count, 4 * bytes,
            [valid](const std::uint8_t* from) { return _mm_and_si128(loadFour(from), valid); });
    } else if (bytes == 3 && count > 0) {
        // Each is read with the byte behind it, so the last one is left.
        const __m128i valid = _mm_set1_epi32(static_cast<std::int32_t>(validMask()));
        done = rounding_.roundMany(
            source, output, count - 1, 4 * bytes, [valid](const std::uint8_t* from) {
                return _mm_and_si128(_mm_slli_epi32(loadFourOfThree(from), 8), valid);
            });
    }
    for (; done < count; ++done)
        store(rounding_.round(sampleAt(source + done * bytes)),
              output + done * sizeof(std::int16_t));
}

void LinearConversion::mixBlock(const std::uint8_t* source, std::uint8_t* output) noexcept {
    constexpr double fullScale = 2147483648.0;
    double left = 0;
    double right = 0;
    for (const StereoWeights& weight : weights_) {
        const double sample = sampleAt(source) / fullScale;
        left += weight.left * sample;
        right += weight.right * sample;
        source += format_.sampleBytes;
    }
    store(rounding_.round(left), output);
    store(rounding_.round(right), output + sizeof(std::int16_t));
}

std::optional<ConvertedBytes> LinearConversion::convert(std::span<std::uint8_t> source,
                                                        std::span<std::uint8_t> output, bool,
                                                        bool) noexcept {
    const auto sourceBlock = static_cast<std::size_t>(format_.blockBytes());
    const std::size_t blocks = std::min(source.size() / sourceBlock, output.size() / outputBlock());
    const std::uint8_t* from = source.data();
    std::uint8_t* to = output.data();
    if (weights_.empty()) {
        roundSamples(from, to, blocks * static_cast<std::size_t>(format_.channels));
    } else {
        for (std::size_t block = 0; block < blocks; ++block) {
            mixBlock(from, to);
            from += sourceBlock;
            to += outputBlock();
        }
    }
    return ConvertedBytes{.used = static_cast<std::uint32_t>(blocks * sourceBlock),
                          .produced = static_cast<std::uint32_t>(blocks * outputBlock())};
}

} // namespace corvina
