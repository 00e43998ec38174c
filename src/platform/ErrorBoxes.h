#pragma once

// Keeps the system from showing message boxes such as "There is no disk in the drive" for a file or
// "Bad Image" for a library. While a NoErrorBoxes lives, the failing call just returns its error.
//
// It counts for the thread that makes it. No event may be fired while it lives: the host's own
// error mode is to be in force in the host's handlers.

#include <windows.h>

namespace corvina {

class NoErrorBoxes {
public:
    NoErrorBoxes() noexcept {
        ::SetThreadErrorMode(
            ::GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &former_);
    }
    ~NoErrorBoxes() { ::SetThreadErrorMode(former_, nullptr); }
    NoErrorBoxes(const NoErrorBoxes&) = delete;
    NoErrorBoxes& operator=(const NoErrorBoxes&) = delete;

private:
    DWORD former_ = 0;
};

} // namespace corvina
