#pragma once

// A window that is never shown.

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

} // namespace corvina::test
