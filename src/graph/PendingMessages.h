#pragma once

// Dispatches the messages that wait in the thread's queue while something long is drawn. Anything
// may happen meanwhile: any of the caller's members may be called, and its window destroyed. One
// object serves one drawing.

#include "platform/PerformanceCounter.h"

namespace corvina {

class PendingMessages {
public:
    explicit PendingMessages(
        const PerformanceCounterApi& counter = systemPerformanceCounter) noexcept;

    // Dispatches the messages that wait now, a hundred at most: a busy timer must not hold up the
    // drawing for ever. WM_QUIT is posted again for the host's own loop, and nothing is dispatched
    // after it.
    //
    // It may be called hundreds of times in a millisecond. Querying the queue can cost a round trip
    // to another process, so an empty queue is not queried again within the same millisecond.
    void handle() noexcept;

private:
    [[nodiscard]] LONGLONG now() const noexcept;

    const PerformanceCounterApi& counter_;
    LONGLONG ticksPerMillisecond_ = 0;
    LONGLONG nextQuery_ = 0; // no counter is below it at first
    bool quitting_ = false;
};

} // namespace corvina
