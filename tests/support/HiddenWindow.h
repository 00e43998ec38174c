#pragma once

// A window that is never shown, and the pumping of its thread's messages with a deadline.

#include <chrono>
#include <functional>
#include <stdexcept>
#include <windows.h>

namespace corvina::test {

class HiddenWindow {
public:
    HiddenWindow() : HiddenWindow("STATIC") {}
    explicit HiddenWindow(const char* className)
        : handle_(::CreateWindowExA(0, className, "", 0, 0, 0, 0, 0, nullptr, nullptr,
                                    ::GetModuleHandleA(nullptr), nullptr)) {
        if (!handle_)
            throw std::runtime_error("no window");
    }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;
    ~HiddenWindow() { destroy(); }

    [[nodiscard]] HWND handle() const noexcept { return handle_; }
    void destroy() noexcept {
        if (::IsWindow(handle_))
            ::DestroyWindow(handle_);
    }

private:
    HWND handle_;
};

// Handles every message that is waiting.
inline void pumpWaiting() {
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        ::DispatchMessageA(&message);
}

// Handles messages until the condition holds; false if it does not within the deadline.
[[nodiscard]] inline bool pumpUntil(const std::function<bool()>& condition,
                                    std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    for (;;) {
        pumpWaiting();
        if (condition())
            return true;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(left.count()),
                                    QS_ALLINPUT);
    }
}

} // namespace corvina::test
