#pragma once

// Turns linear samples of any width, whole numbers or floating point, into 16 bits. For records
// that the audio compression manager refuses: extensible ones, floating point, 32 bits, many
// channels.

#include "stream/Conversion.h"
#include "stream/LinearFormat.h"
#include "stream/SampleRounding.h"
#include "stream/StereoMix.h"

#include <vector>

namespace corvina {

class LinearConversion final : public Conversion {
public:
    // mixed: two channels come out, whatever goes in.
    LinearConversion(const LinearFormat& format, bool mixed);

    [[nodiscard]] std::int32_t outputChannels() const noexcept {
        return weights_.empty() ? format_.channels : 2;
    }

    [[nodiscard]] std::optional<std::uint32_t> sourceBytes(std::uint32_t outputBytes) override;
    [[nodiscard]] std::optional<ConvertedBytes> convert(std::span<std::uint8_t> source,
                                                        std::span<std::uint8_t> output, bool first,
                                                        bool last) noexcept override;

private:
    [[nodiscard]] std::uint32_t outputBlock() const noexcept {
        return static_cast<std::uint32_t>(outputChannels()) * sizeof(std::int16_t);
    }
    // The bits of a sample that count, of 32. In floating point all do.
    [[nodiscard]] std::uint32_t validMask() const noexcept {
        return ~std::uint32_t{0} << (format_.isFloat ? 0 : 32 - format_.validBits);
    }
    [[nodiscard]] std::int32_t wholeSampleAt(const std::uint8_t* bytes) const noexcept;
    void roundSamples(const std::uint8_t* source, std::uint8_t* output, std::size_t count) noexcept;
    void mixBlock(const std::uint8_t* source, std::uint8_t* output) noexcept;

    LinearFormat format_;
    std::optional<SampleForm> form_;     // none if 16 bits hold every sample
    std::vector<StereoWeights> weights_; // by channel; empty unless mixed
    SampleRounding rounding_;
};

} // namespace corvina
