#pragma once

// Turns Ctrl+C, a closing terminal and the end of the session into an event that the program's loop
// waits for, so that it ends by itself: playback stopped, control released. One object a program.

#include <windows.h>

namespace corvina::app {

class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    [[nodiscard]] bool requested() const noexcept;
    // Signalled for good once an end was asked for.
    [[nodiscard]] HANDLE waitable() const noexcept;
};

} // namespace corvina::app
