#pragma once

// Keeps the system from showing boxes of its own, such as "There is no disk in the drive" for a
// file or "Bad Image" for a library: while a NoErrorBoxes lives, the call that failed just answers
// so.
//
// It is for the thread that makes it alone. The host keeps its own ways: no event is fired while it
// lives.

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
