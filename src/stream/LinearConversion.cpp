#include "stream/LinearConversion.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

// Nothing for samples that 16 bits always hold.
std::optional<SampleForm> formOf(const LinearFormat& format) noexcept {
    switch (format.sampleBytes) {
    case 3:
        return SampleForm::integer24;
    case 4:
        return format.isFloat ? SampleForm::float32 : SampleForm::integer32;
    case 8:
        return SampleForm::float64;
    default:
        return std::nullopt;
    }
}

// A sample of one byte or two. The former alone are stored without a sign.
std::uint16_t narrowSampleAt(std::size_t sampleBytes, const std::uint8_t* bytes,
                             std::uint32_t valid) noexcept {
    const std::uint32_t bits =
        sampleBytes == 1 ? (bytes[0] ^ 0x80U) << 8 : numberAt<std::uint16_t>(bytes);
    return static_cast<std::uint16_t>(bits & valid >> 16);
}

template <typename Sample>
void store(Sample sample, std::uint8_t* output) noexcept {
    static_assert(sizeof sample == sizeof(std::int16_t));
    std::memcpy(output, &sample, sizeof sample);
}

// Many of them, compiled for each width by itself and without a look at what the other array holds.
template <std::size_t sampleBytes>
void storeNarrow(const std::uint8_t* __restrict source, std::uint8_t* __restrict output,
                 std::size_t count, std::uint32_t valid) noexcept {
    for (std::size_t at = 0; at < count; ++at)
        store(narrowSampleAt(sampleBytes, source + at * sampleBytes, valid),
              output + at * sizeof(std::int16_t));
}

} // namespace

LinearConversion::LinearConversion(const LinearFormat& format, bool mixed)
    : format_(format), form_(formOf(format)) {
    if (mixed && format.channels > 2)
        weights_ = stereoWeights(speakersOf(format.channels, format.channelMask));
}

std::optional<std::uint32_t> LinearConversion::sourceBytes(std::uint32_t outputBytes) {
    return outputBytes / outputBlock() * static_cast<std::uint32_t>(format_.blockBytes());
}

// A sample with its most significant bit in bit 31.
std::int32_t LinearConversion::wholeSampleAt(const std::uint8_t* bytes) const noexcept {
    if (form_)
        return sampleAt(*form_, bytes, validMask());
    const auto width = static_cast<std::size_t>(format_.sampleBytes);
    const std::uint32_t upper = narrowSampleAt(width, bytes, validMask());
    return static_cast<std::int32_t>(upper << 16);
}

void LinearConversion::roundSamples(const std::uint8_t* source, std::uint8_t* output,
                                    std::size_t count) noexcept {
    const std::uint32_t valid = validMask();
    if (!form_ && format_.sampleBytes == 1)
        return storeNarrow<1>(source, output, count, valid);
    if (!form_)
        return storeNarrow<2>(source, output, count, valid);
    std::size_t done = rounding_.roundMany(*form_, source, output, count, valid);
    for (; done < count; ++done)
        store(rounding_.round(sampleAt(*form_, source + done * bytesOf(*form_), valid)),
              output + done * sizeof(std::int16_t));
}

void LinearConversion::mixBlock(const std::uint8_t* source, std::uint8_t* output) noexcept {
    constexpr double fullScale = 2147483648.0;
    double left = 0;
    double right = 0;
    for (const StereoWeights& weight : weights_) {
        const double sample = wholeSampleAt(source) / fullScale;
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
