#pragma once

// A conversion by the audio compression manager.

#include "platform/AcmApi.h"
#include "stream/Conversion.h"

#include <memory>

namespace corvina {

class AcmConversion final : public Conversion {
public:
    // Null if the manager refuses the pair of formats. The source's record is passed by its own
    // address: codecs read the bytes behind it.
    [[nodiscard]] static std::unique_ptr<Conversion>
    open(const AcmApi& acm, const WAVEFORMATEX& source, WAVEFORMATEX& output);

    [[nodiscard]] std::optional<std::uint32_t> sourceBytes(std::uint32_t outputBytes) override;
    [[nodiscard]] std::optional<ConvertedBytes> convert(std::span<std::uint8_t> source,
                                                        std::span<std::uint8_t> output, bool first,
                                                        bool last) noexcept override;

private:
    AcmConversion(const AcmApi& acm, AcmStream stream) noexcept
        : acm_(acm), stream_(std::move(stream)) {}

    const AcmApi& acm_;
    AcmStream stream_;
};

} // namespace corvina
