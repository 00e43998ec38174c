#pragma once

// The user32 functions for subclassing and moving a window, for its property list and its messages.
// A user keeps the table by reference: it must outlive the user.

#include <windows.h>

namespace corvina {

struct WindowApi {
    decltype(&::IsWindow) isWindow = &::IsWindow;
    decltype(&::GetWindowThreadProcessId) getWindowThreadProcessId = &::GetWindowThreadProcessId;
    decltype(&::GetCurrentProcessId) getCurrentProcessId = &::GetCurrentProcessId;
    decltype(&::GetPropA) getProp = &::GetPropA;
    decltype(&::SetPropA) setProp = &::SetPropA;
    decltype(&::RemovePropA) removeProp = &::RemovePropA;
    decltype(&::SetWindowLongA) setWindowLong = &::SetWindowLongA;
    decltype(&::CallWindowProcA) callWindowProc = &::CallWindowProcA;
    decltype(&::PostMessageA) postMessage = &::PostMessageA;
    decltype(&::PeekMessageA) peekMessage = &::PeekMessageA;
    decltype(&::PostQuitMessage) postQuitMessage = &::PostQuitMessage;
    decltype(&::SetTimer) setTimer = &::SetTimer;
    decltype(&::KillTimer) killTimer = &::KillTimer;
    decltype(&::GetWindowLongA) getWindowLong = &::GetWindowLongA;
    decltype(&::SetParent) setParent = &::SetParent;
};

inline const WindowApi systemWindowApi;

} // namespace corvina
