#pragma once

// A timer of the thread's message loop. It needs no window procedure: the system calls the timer
// when the loop dispatches its message.
//
// The tick is called from the loop, never from inside start and stop, and may do anything.

#include "platform/WindowApi.h"

#include <functional>

namespace corvina {

class WindowTimer {
public:
    // tick must not throw.
    WindowTimer(const WindowApi& windows, std::function<void()> tick);
    ~WindowTimer(); // stop
    WindowTimer(const WindowTimer&) = delete;
    WindowTimer& operator=(const WindowTimer&) = delete;

    // With another time if it runs already.
    void start(HWND window, UINT milliseconds) noexcept;
    void stop() noexcept;

private:
    static void CALLBACK ticked(HWND window, UINT message, UINT_PTR id, DWORD time);

    const WindowApi& windows_;
    std::function<void()> tick_;
    HWND window_ = nullptr;
    bool running_ = false;
};

} // namespace corvina
