#pragma once

// The events about the starts and ends of playbacks: Ended exactly once for every
// successful start, and StateChanged whenever State is another.
//
// A playback whose device is closed ends when the close message is handled, behind DonePlay. If that
// message will not come it is ended at once. Handlers may do anything, so an event is always
// the last thing that a function here does with its members.

#include "player/PlayerEvents.h"

#include <cstdint>
#include <vector>

namespace corvina {

class PlaybackLife {
public:
    explicit PlaybackLife(PlayerEvents& events) noexcept : events_(events) {}

    [[nodiscard]] PlayState state() const noexcept;

    // A start has succeeded. Raises StateChanged.
    void begun(std::uint32_t playback);
    // The first reason that is set counts; without one the playback has finished.
    void setReason(std::uint32_t playback, PlayEndReason reason) noexcept;
    void setPaused(bool paused);
    // Whether the device is closed, so that the end comes with its message.
    void setDeviceClosed(std::uint32_t playback, bool closed) noexcept;
    // The message was handled. Raises Ended for all whose device is closed.
    void raiseDue();
    // Ends it now, if it has not ended.
    void end(std::uint32_t playback, PlayEndReason reason);
    void endAll(PlayEndReason reason);

private:
    struct Playback {
        std::uint32_t number = 0;
        PlayEndReason reason = PLAYEND_FINISHED;
        bool reasonSet = false;
        bool deviceClosed = false;
    };

    [[nodiscard]] Playback* find(std::uint32_t playback) noexcept;
    void reportState();
    void raise(std::vector<Playback> ended);

    PlayerEvents& events_;
    std::vector<Playback> running_;
    bool paused_ = false;
    PlayState reported_ = PLAY_STOPPED;
};

} // namespace corvina
