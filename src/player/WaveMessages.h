#pragma once

// The device's messages in the queue of the player's window: posted in its place, and taken out
// unhandled, so that a playback is not fed or stopped by what a former one left.
//
// Thread: the window's.

#include "platform/WindowApi.h"

#include <cstddef>

#include <mmsystem.h>

namespace corvina {

class WaveMessages {
public:
    explicit WaveMessages(const WindowApi& windows) noexcept : windows_(windows) {}

    // Null: there is no window, nothing can be posted, and nothing waits.
    void setWindow(HWND window) noexcept { window_ = window; }
    [[nodiscard]] HWND window() const noexcept { return window_; }

    // Posts as many messages as the device would for so many returned buffers. Stops at the first
    // that is not accepted; what the last post returned.
    [[nodiscard]] BOOL postReturned(std::size_t buffers, LPARAM header) noexcept;

    // As if the device had reported that it is closed. Whether the message was accepted.
    [[nodiscard]] bool postClose() noexcept;

    void discardReturned() noexcept;
    // Whether there was one.
    bool discardOneReturned() noexcept { return discard(MM_WOM_DONE); }
    bool discardClose() noexcept { return discard(MM_WOM_CLOSE); }

private:
    [[nodiscard]] bool discard(UINT message) noexcept;

    const WindowApi& windows_;
    HWND window_ = nullptr;
};

} // namespace corvina
