#pragma once

// The PCM that is sent to the device.

#include <cstddef>
#include <cstdint>

namespace corvina {

struct PlayedFormat {
    std::int32_t sampleRate = 0;
    std::int32_t channels = 0;
    std::int32_t bits = 0; // 8 or 16

    [[nodiscard]] std::int32_t frameBytes() const noexcept { return channels * bits / 8; }
    [[nodiscard]] std::uint8_t silence() const noexcept { return bits == 8 ? 0x80 : 0; }
    [[nodiscard]] std::int64_t framesOf(std::int64_t milliseconds) const noexcept {
        return milliseconds * sampleRate / 1000;
    }
    // The nearest number: of framesOf(n) it is n.
    [[nodiscard]] std::int64_t millisecondsOf(std::int64_t frames) const noexcept {
        return sampleRate > 0 ? (frames * 1000 + sampleRate / 2) / sampleRate : 0;
    }
    bool operator==(const PlayedFormat&) const = default;
};

} // namespace corvina
