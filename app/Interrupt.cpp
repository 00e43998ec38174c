#include "Interrupt.h"

namespace corvina::app {

namespace {

HANDLE endRequested = nullptr;
HANDLE ended = nullptr;

// Runs on a thread of the system's.
BOOL WINAPI onSignal(DWORD signal) {
    SetEvent(endRequested);
    // After these two the system ends the process as soon as the handler returns: wait for the
    // program to end first.
    constexpr DWORD patienceMs = 5000;
    if (signal == CTRL_CLOSE_EVENT || signal == CTRL_SHUTDOWN_EVENT)
        WaitForSingleObject(ended, patienceMs);
    return TRUE;
}

} // namespace

Interrupt::Interrupt() {
    endRequested = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(onSignal, TRUE);
}

// The two events stay: a handler may still be about to touch them, and the process ends anyway.
Interrupt::~Interrupt() {
    SetConsoleCtrlHandler(onSignal, FALSE);
    SetEvent(ended);
}

bool Interrupt::requested() const noexcept {
    return WaitForSingleObject(endRequested, 0) == WAIT_OBJECT_0;
}

HANDLE Interrupt::waitable() const noexcept {
    return endRequested;
}

} // namespace corvina::app
