#pragma once

// The real user32 functions of the subclassing and of playback, counted and failing on command. One
// set for a test program.

#include "platform/WindowApi.h"
#include "support/Faults.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

inline Faults windowFaults;
// "Post 957 0 4096" (message, wParam, lParam), "SetWindowLong" and so on; for tests of orders.
inline std::vector<std::string> windowLog;
// By identifier: the interval and what is called.
inline std::map<UINT_PTR, std::pair<UINT, TIMERPROC>> fakeTimers;

namespace faulty {

inline BOOL WINAPI isWindow(HWND window) {
    return !windowFaults.strikes("IsWindow") && ::IsWindow(window);
}

inline DWORD WINAPI getWindowThreadProcessId(HWND window, LPDWORD process) {
    if (windowFaults.strikes("GetWindowThreadProcessId"))
        return 0;
    return ::GetWindowThreadProcessId(window, process);
}

inline DWORD WINAPI getCurrentProcessId() {
    return ::GetCurrentProcessId();
}

inline HANDLE WINAPI getProp(HWND window, LPCSTR name) {
    return windowFaults.strikes("GetProp") ? nullptr : ::GetPropA(window, name);
}

inline BOOL WINAPI setProp(HWND window, LPCSTR name, HANDLE value) {
    windowLog.push_back(std::string("SetProp ") + name);
    return !windowFaults.strikes("SetProp") && ::SetPropA(window, name, value);
}

inline HANDLE WINAPI removeProp(HWND window, LPCSTR name) {
    windowLog.push_back(std::string("RemoveProp ") + name);
    return windowFaults.strikes("RemoveProp") ? nullptr : ::RemovePropA(window, name);
}

inline LONG WINAPI setWindowLong(HWND window, int index, LONG value) {
    windowLog.emplace_back("SetWindowLong");
    return windowFaults.strikes("SetWindowLong") ? 0 : ::SetWindowLongA(window, index, value);
}

inline LONG WINAPI getWindowLong(HWND window, int index) {
    return windowFaults.strikes("GetWindowLong") ? 0 : ::GetWindowLongA(window, index);
}

// As between windows of different DPI awareness.
inline HWND WINAPI setParent(HWND window, HWND parent) {
    if (!windowFaults.strikes("SetParent"))
        return ::SetParent(window, parent);
    ::SetLastError(ERROR_INVALID_STATE);
    return nullptr;
}

inline LRESULT WINAPI callWindowProc(WNDPROC procedure, HWND window, UINT message, WPARAM wParam,
                                     LPARAM lParam) {
    return ::CallWindowProcA(procedure, window, message, wParam, lParam);
}

inline BOOL WINAPI postMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    windowLog.push_back("Post " + std::to_string(message) + " " + std::to_string(wParam) + " " +
                        std::to_string(lParam));
    if (windowFaults.strikes("PostMessage"))
        return windowFaults.code();
    return ::PostMessageA(window, message, wParam, lParam);
}

inline BOOL WINAPI peekMessage(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
    return !windowFaults.strikes("PeekMessage") &&
           ::PeekMessageA(message, window, first, last, remove);
}

// Timers tick when a test says so.
inline BOOL WINAPI killTimer(HWND, UINT_PTR id) {
    return fakeTimers.erase(id) > 0;
}

inline UINT_PTR WINAPI setTimer(HWND, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    fakeTimers[id] = {milliseconds, procedure};
    return id;
}

} // namespace faulty

inline void tickTimers() {
    const auto timers = fakeTimers;
    for (const auto& [id, timer] : timers)
        timer.second(nullptr, WM_TIMER, id, 0);
}

inline const WindowApi faultyWindowApi{faulty::isWindow,
                                       faulty::getWindowThreadProcessId,
                                       faulty::getCurrentProcessId,
                                       faulty::getProp,
                                       faulty::setProp,
                                       faulty::removeProp,
                                       faulty::setWindowLong,
                                       faulty::callWindowProc,
                                       faulty::postMessage,
                                       faulty::peekMessage,
                                       &::PostQuitMessage,
                                       faulty::setTimer,
                                       faulty::killTimer,
                                       faulty::getWindowLong,
                                       faulty::setParent};

} // namespace corvina::test
