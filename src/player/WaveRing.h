#pragma once

// The buffers of one playback, which go round between the engine and the wave device.
//
// The device knows headers and samples by their addresses: a ring stays where it is, and is kept
// until its device is closed. Frames are those of the device since its last reset.

#include "platform/WaveApi.h"
#include "player/SampleChain.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace corvina {

// The device's header of a buffer, the samples that it points to, and how they came about.
struct WaveBuffer {
    WAVEHDR header{};
    std::vector<std::int16_t> data;
    // The same as header.lpData. Nothing reads it; the record has always had this field, and tools
    // that look at a host's memory know its layout.
    std::int32_t dataAddress = 0;

    std::int64_t firstFrame = 0;
    // The chain before this buffer, if it changed the samples; what they were before, and what the
    // chain was set to within the buffer, by byte.
    std::optional<SampleChain> chain;
    std::vector<std::int16_t> unchanged;
    std::vector<std::pair<std::size_t, SoundSettings>> changes;

    // The samples that are played.
    [[nodiscard]] std::span<std::uint8_t> bytes() noexcept {
        return {reinterpret_cast<std::uint8_t*>(data.data()), header.dwBufferLength};
    }
};

class WaveRing {
public:
    static constexpr std::size_t playedBuffers = 8;
    static constexpr std::int32_t bufferBytes = 8000;

    // All buffers hold silence. If 8000 bytes are not whole frames, as of 3 channels, each buffer
    // is as many bytes shorter: devices drop the rest of a frame.
    WaveRing(const PlayedFormat& format, const SoundSettings& settings);
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

    // The buffer holds the next frames of the stream: changes them by the settings.
    void applySettings(WaveBuffer& buffer);
    // What was filled so far will not be heard: the next frame is 0.
    void restart() noexcept { filledFrames_ = 0; }
    [[nodiscard]] std::int64_t filledFrames() const noexcept { return filledFrames_; }
    // Changes what is still to be heard, from that frame on, in the buffers that the device has.
    void setSettings(const SoundSettings& settings, std::int64_t fromFrame);

    // A buffer is with the device, which has not finished it.
    [[nodiscard]] bool anyQueued() const noexcept;
    // The largest sample of a channel in so many frames from that one on, in parts of full scale.
    [[nodiscard]] double peak(std::int32_t channel, std::int64_t fromFrame,
                              std::int64_t frames) const noexcept;

private:
    void renderAgain(WaveBuffer& buffer, std::size_t fromByte);

    PlayedFormat format_;
    SampleChain chain_; // behind the buffer filled last
    std::array<WaveBuffer, playedBuffers + 1> buffers_;
    std::size_t current_ = playedBuffers - 1;
    std::int64_t filledFrames_ = 0;
};

} // namespace corvina
