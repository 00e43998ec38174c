#pragma once

// Lets the system handle what waits in the thread's message queue while something long is drawn.
// Anything may happen meanwhile: the caller must expect every one of its own members to be called,
// and its window to be destroyed. One object serves one drawing.

#include "platform/PerformanceCounter.h"

namespace corvina {

class PendingMessages {
public:
    explicit PendingMessages(
        const PerformanceCounterApi& counter = systemPerformanceCounter) noexcept;

    // Handles the messages that wait now, up to a number that a busy timer cannot exceed. A message
    // to quit is put back for the host's own loop and ends the handling for good.
    //
    // Meant to be called hundreds of times in a millisecond. Asking a queue can cost a round trip
    // to another process, so one that was empty is not asked again within the same millisecond.
    void handle() noexcept;

private:
    [[nodiscard]] LONGLONG now() const noexcept;

    const PerformanceCounterApi& counter_;
    LONGLONG ticksPerMillisecond_ = 0;
    LONGLONG nextAsked_ = 0;
    bool quitting_ = false;
};

} // namespace corvina
