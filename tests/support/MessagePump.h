#pragma once

// Waiting in a test: messages are dispatched until something has come true or a deadline has
// passed. Nothing is waited for longer than it takes.

#include <chrono>
#include <windows.h>

namespace corvina::test {

using namespace std::chrono_literals;

inline void dispatchWaitingMessages() {
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

// Whether the condition came true before the deadline.
template <typename Condition>
[[nodiscard]] bool pumpUntil(Condition condition, std::chrono::milliseconds deadline = 15s) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    for (;;) {
        dispatchWaitingMessages();
        if (condition())
            return true;
        if (std::chrono::steady_clock::now() >= end)
            return false;
        constexpr DWORD pollMs = 10;
        ::MsgWaitForMultipleObjectsEx(0, nullptr, pollMs, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

} // namespace corvina::test
