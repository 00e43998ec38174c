#pragma once

// The buffers of one playback, which go round between the engine and the wave device.
//
// The device knows headers and samples by their addresses: a ring stays where it is, and is kept
// until its device is closed.

#include "platform/WaveApi.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvina {

// The device's header of a buffer, and the samples that it points to.
struct WaveBuffer {
    WAVEHDR header{};
    std::vector<std::int16_t> data;
    // The same as header.lpData. Nothing reads it; the record has always had this field, and tools
    // that look at a host's memory know its layout.
    std::int32_t dataAddress = 0;
};

class WaveRing {
public:
    static constexpr std::size_t playedBuffers = 8;
    static constexpr std::int32_t bufferBytes = 8000;

    // All buffers hold silence.
    WaveRing();
    WaveRing(const WaveRing&) = delete;
    WaveRing& operator=(const WaveRing&) = delete;

    // Prepares the buffers for the device, up to the first that fails; its result.
    [[nodiscard]] MMRESULT prepare(const WaveApi& wave, HWAVEOUT device) noexcept;
    void unprepare(const WaveApi& wave, HWAVEOUT device) noexcept;

    // Goes on to the buffer that the device returns next: it returns them in the order in which
    // they were queued. The first buffer when called for the first time.
    [[nodiscard]] WaveBuffer& next() noexcept;
    [[nodiscard]] WaveBuffer& first() noexcept { return buffers_.front(); }
    // A ninth record, which is never given samples, prepared or queued.
    [[nodiscard]] WaveBuffer& spare() noexcept { return buffers_[playedBuffers]; }

private:
    std::array<WaveBuffer, playedBuffers + 1> buffers_;
    std::size_t current_ = playedBuffers - 1;
};

} // namespace corvina
