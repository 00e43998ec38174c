#include "Interrupt.h"

namespace corvina::app {

namespace {

HANDLE asked = nullptr;
HANDLE obeyed = nullptr;

// Runs on a thread of the system's.
BOOL WINAPI onSignal(DWORD signal) {
    SetEvent(asked);
    // Of these two the program outlives only the handler's return: hold it until all is cleared.
    constexpr DWORD patienceMs = 5000;
    if (signal == CTRL_CLOSE_EVENT || signal == CTRL_SHUTDOWN_EVENT)
        WaitForSingleObject(obeyed, patienceMs);
    return TRUE;
}

} // namespace

Interrupt::Interrupt() {
    asked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    obeyed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(onSignal, TRUE);
}

// The two events stay: a handler may still be about to touch them, and the process ends anyway.
Interrupt::~Interrupt() {
    SetConsoleCtrlHandler(onSignal, FALSE);
    SetEvent(obeyed);
}

bool Interrupt::requested() const noexcept {
    return WaitForSingleObject(asked, 0) == WAIT_OBJECT_0;
}

HANDLE Interrupt::waitable() const noexcept {
    return asked;
}

} // namespace corvina::app
