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
    const int unused = 32 - format_.validBits;
    return static_cast<std::int32_t>(bits >> unused << unused);
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
    for (std::size_t block = 0; block < blocks; ++block) {
        if (!weights_.empty()) {
            mixBlock(from, to);
            from += sourceBlock;
            to += outputBlock();
            continue;
        }
        for (std::int32_t channel = 0; channel < format_.channels; ++channel) {
            store(rounding_.round(sampleAt(from)), to);
            from += format_.sampleBytes;
            to += sizeof(std::int16_t);
        }
    }
    return ConvertedBytes{.used = static_cast<std::uint32_t>(blocks * sourceBlock),
                          .produced = static_cast<std::uint32_t>(blocks * outputBlock())};
}

} // namespace corvina
