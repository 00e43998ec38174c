#pragma once

// What the playback engine does with its device. The device is open in every state but closed.
//
//   closed        no device: nothing was started, or everything has ended
//   opening       the device is open, and its buffers are being prepared
//   feeding       each buffer that comes back is refilled from the converter and queued again
//   draining      nothing is refilled any more; the buffers that come back are counted
//   closing       all buffers are back, or are not waited for; the device is being closed
//   closeRefused  the device did not let itself be closed; the next start tries again
//
// What moves it:
//   start         opens the device and posts eight MM_WOM_DONE messages, which fill the ring
//   MM_WOM_DONE   while feeding, refills and queues the next buffer. The message that meets the
//                 end of the sound, or stop, ends feeding; eight more close the device.
//   MM_WOM_CLOSE  stops what is left, sets done and raises DonePlay
//
// What the host was notified of is not part of it: a device can be closed before the host hears of
// the end, and a paused device is still in one of these states.

#include <cstdint>

namespace corvina {

enum class PlaybackState : std::uint8_t {
    closed,
    opening,
    feeding,
    draining,
    closing,
    closeRefused
};

// For traces: "closed", "opening" and so on.
[[nodiscard]] const char* nameOf(PlaybackState state) noexcept;

// Whether the engine ever goes from the one state to the other in one step.
[[nodiscard]] bool mayFollow(PlaybackState from, PlaybackState to) noexcept;

// Is called with each change of state. It must not call the player.
using PlaybackTrace = void (*)(PlaybackState from, PlaybackState to);

} // namespace corvina
