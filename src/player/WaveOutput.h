#pragma once

// The device of a playback together with the ring of buffers that it plays, and what is known of
// the sound that is heard: its place, its level, and whether the device plays at all.
//
// Closed at first. The ring of a device that was closed stays until the next one is opened. Frames
// count from the last reset of the device. One thread.

#include "player/PlayedTrack.h"
#include "player/WaveDevice.h"
#include "player/WaveRing.h"

#include <cstdint>
#include <memory>

namespace corvina {

class WaveOutput {
public:
    explicit WaveOutput(const WaveApi& wave) noexcept : wave_(wave), device_(wave) {}

    // Makes a ring and opens a device for the track, which is mixed to two channels if the device
    // takes no more. source: the numbers of the track's source. window: gets the messages.
    [[nodiscard]] MMRESULT open(std::int32_t index, PlayedTrack& track, const WAVEFORMATEX& source,
                                const SoundSettings& settings, HWND window);
    // Prepares the buffers of the device that was opened.
    [[nodiscard]] MMRESULT prepare() noexcept;
    // Closes the device without waiting for its buffers. Whether it accepted that, so that its
    // close message comes; afterwards there is no device in either case.
    [[nodiscard]] bool closeAtOnce() noexcept;
    // What was queued is dropped, and the next buffer begins at frame 0.
    void restart(bool paused) noexcept;

    [[nodiscard]] WaveDevice& device() noexcept { return device_; }
    // Only if a device was opened and did not refuse to close.
    [[nodiscard]] WaveRing& ring() noexcept { return *ring_; }
    // Of the device opened last.
    [[nodiscard]] const PlayedFormat& format() const noexcept { return format_; }

    [[nodiscard]] std::int64_t heardFrame() noexcept;
    // The peak of what is heard now, in parts of full scale. Mono sound has it in every channel.
    [[nodiscard]] double level(std::int32_t channel) noexcept;
    // Changes what is still to be heard.
    void setSettings(const SoundSettings& settings);

    // The device has returned a buffer or goes on after a pause.
    void noteProgress() noexcept { progressAt_ = ::GetTickCount64(); }
    // It has buffers and has played none of them for so long that it must be lost; or it has none,
    // and the messages of those that it returned are still due after so long. To be called several
    // times a second.
    [[nodiscard]] bool stalled(bool paused, bool messagesDue) noexcept;

private:
    const WaveApi& wave_;
    WaveDevice device_;
    std::unique_ptr<WaveRing> ring_;
    PlayedFormat format_;
    std::int64_t watchedFrame_ = 0;
    std::uint64_t progressAt_ = 0; // when the device was last seen to play, in milliseconds
};

} // namespace corvina
