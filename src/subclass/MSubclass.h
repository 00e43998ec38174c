#pragma once

// Routes chosen messages of a window to clients, by replacing the window's procedure with one
// shared procedure.
//
// All bookkeeping lies in properties of the window itself, whose names are built from decimal
// numbers: hosts' own tools can read them. The client attached last is called first; the one
// attached first decides by its MsgResponse whether and when the window's old procedure is called.
// A client's address is kept without a reference: it must detach before it is destroyed. Only the
// thread that owns the window may call; there are no locks.

#include <cstdint>
#include <windows.h>

#include "Corvina.h"
#include "platform/WindowApi.h"

namespace corvina::MSubclass {

// What the run-time errors of AttachMessage are called; they are raised as errorBase + number.
namespace ErrorNumber {
inline constexpr std::int32_t cannotSubclass = 13081;
inline constexpr std::int32_t alreadyHandled = 13082;
inline constexpr std::int32_t invalidWindow = 13083;
inline constexpr std::int32_t externalWindow = 13084;
} // namespace ErrorNumber
inline constexpr std::int32_t errorBase = static_cast<std::int32_t>(0x80040000);

// Raises 5 where a property cannot be set or there is no client, and the four errors above. What
// was done before a failure is undone.
void AttachMessage(ISubclass* iwp, HWND hWnd, std::int32_t iMsg);
// Does nothing where the client is not attached.
void DetachMessage(ISubclass* iwp, HWND hWnd, std::int32_t iMsg) noexcept;
// Whether the window's messages come here. They no longer do behind its WM_DESTROY, which a window
// may outlive: a container can take it out of a form that goes.
[[nodiscard]] bool IsSubclassed(HWND hWnd) noexcept;
// The message being dispatched, or the last one that was.
[[nodiscard]] std::int32_t CurrentMessage() noexcept;
// Calls the window's procedure from before it was subclassed; 0 where none is stored.
LRESULT CallOldWindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) noexcept;

// For tests: another table of platform functions, and a listener to the trace texts, which are
// otherwise discarded. Null gives back the usual.
using Trace = void (*)(const char* text);
void useWindowApi(const WindowApi* windows) noexcept;
void useTrace(Trace trace) noexcept;

} // namespace corvina::MSubclass
