#pragma once

// Processor time that this process has used so far, in seconds.

#include "Figure.h"

#include <cstdint>
#include <windows.h>

namespace corvina::bench {

[[nodiscard]] inline double processorSeconds() {
    FILETIME creation, exit, kernel, user;
    if (!::GetProcessTimes(::GetCurrentProcess(), &creation, &exit, &kernel, &user))
        giveUp("no processor times");
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) / 1e7;
}

} // namespace corvina::bench
