#pragma once

// The block of samples that is drawn: 1024 16-bit signed samples, silent at first.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace corvina {

class SampleBuffer {
public:
    static constexpr std::size_t sampleCount = 1024;
    static constexpr std::int32_t highestIndex = sampleCount - 1;

    // A block brings 1023 bytes, not 1023 samples: 511 samples and the low byte of the next. The
    // high byte of that one and all samples behind it keep their values. Hosts rely on no more
    // being readable at the address they pass, so this must not grow.
    static constexpr std::size_t blockBytes = 1023;

    // block: blockBytes readable bytes, at any address.
    void take(const void* block) noexcept { std::memcpy(samples_.data(), block, blockBytes); }

    [[nodiscard]] std::int16_t operator[](std::size_t index) const noexcept {
        return samples_[index];
    }

private:
    std::array<std::int16_t, sampleCount> samples_{};
};

} // namespace corvina
