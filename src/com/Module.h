#pragma once

// The module that this code is linked into: its handle, and how many users keep it loaded.

#include <atomic>
#include <windows.h>

namespace corvina {

class Module {
public:
    void lock() noexcept { ++users_; }
    void unlock() noexcept { --users_; }
    [[nodiscard]] bool inUse() const noexcept { return users_ > 0; }

    // The handle of the DLL or program that holds this code.
    [[nodiscard]] HINSTANCE handle() const noexcept;

private:
    std::atomic<long> users_{0};
};

[[nodiscard]] Module& thisModule() noexcept;

} // namespace corvina
