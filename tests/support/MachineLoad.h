#pragma once

// How busy the whole machine was during a part of a test, which tells a program that comes late by
// its own fault from one that got no processor.

#include <cstdint>
#include <windows.h>

namespace corvina::test {

class MachineLoad {
public:
    // Begins to measure.
    MachineLoad() { read(idleBefore_, allBefore_); }

    // Whether the processors had next to no time to spare since then. A program that sleeps may
    // then be woken too late for a deadline of milliseconds, whatever it does.
    [[nodiscard]] bool wasFull() const {
        constexpr std::uint64_t leastIdlePercent = 25;
        std::uint64_t idle = 0, all = 0;
        if (!read(idle, all) || all <= allBefore_)
            return false;
        return (idle - idleBefore_) * 100 < (all - allBefore_) * leastIdlePercent;
    }

private:
    static std::uint64_t number(const FILETIME& time) {
        return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    }

    // The time that all processors spent idle, and all time.
    static bool read(std::uint64_t& idle, std::uint64_t& all) {
        FILETIME idleTime{}, kernelAndIdle{}, user{};
        if (!::GetSystemTimes(&idleTime, &kernelAndIdle, &user))
            return false;
        idle = number(idleTime);
        all = number(kernelAndIdle) + number(user);
        return true;
    }

    std::uint64_t idleBefore_ = 0;
    std::uint64_t allBefore_ = 0;
};

} // namespace corvina::test
