#pragma once

// What a format record says about linear samples, whether it is a plain or an extensible one.

#include <cstdint>
#include <optional>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

struct LinearFormat {
    bool isFloat = false;
    std::int32_t rate = 0;
    std::int32_t channels = 0;
    std::int32_t sampleBytes = 0;  // that a sample takes in the stream
    std::int32_t validBits = 0;    // of them, from the most significant on
    std::uint32_t channelMask = 0; // the SPEAKER_ bits, 0 if the record has none

    [[nodiscard]] std::int32_t blockBytes() const noexcept { return channels * sampleBytes; }
};

// Nothing for compressed samples and for a record that contradicts itself. As many bytes as cbSize
// counts must be readable behind the record.
[[nodiscard]] std::optional<LinearFormat> linearFormat(const WAVEFORMATEX& record);

} // namespace corvina
