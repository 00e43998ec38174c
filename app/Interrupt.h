#pragma once

// Turns Ctrl+C, a closing terminal and the end of the session into an event that the program's loop
// waits for. So the program ends in order: playback stopped, control released. Make one in a
// program.

#include <windows.h>

namespace corvina::app {

class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    [[nodiscard]] bool requested() const noexcept;
    // Stays signalled once an end was requested.
    [[nodiscard]] HANDLE waitable() const noexcept;
};

} // namespace corvina::app
