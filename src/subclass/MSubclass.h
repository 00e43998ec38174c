#pragma once

// Routes chosen messages of a window to clients. The window's procedure is replaced by one
// procedure that all subclassed windows share; it calls the clients of each message, and the
// window's old procedure.
//
// The client that attached last is called first. The client that attached first decides by its
// MsgResponse whether the old procedure is called, and when.
//
// All bookkeeping is kept in properties of the window, under names built from decimal numbers
// (WindowProperties.h). The names are published: tools of hosts read them. A client's address is
// kept without a reference, so a client must detach before it is destroyed.
//
// With its last client a window gets its old procedure back, unless another component has
// subclassed it meanwhile: then the shared procedure stays below that component's and passes
// messages on, until the window is destroyed or a client attaches again.
//
// Thread: only the one that owns the window may call. There are no locks.

#include <cstdint>
#include <windows.h>

#include "Corvina.h"
#include "platform/WindowApi.h"

namespace corvina::MSubclass {

// The run-time errors of AttachMessage are raised as errorBase + number.
namespace ErrorNumber {
inline constexpr std::int32_t cannotSubclass = 13081;
inline constexpr std::int32_t alreadyHandled = 13082;
inline constexpr std::int32_t invalidWindow = 13083;
inline constexpr std::int32_t externalWindow = 13084;
} // namespace ErrorNumber
inline constexpr std::int32_t errorBase = static_cast<std::int32_t>(0x80040000);

// Raises 5 if there is no client or a property cannot be set, and the four errors above. A failure
// undoes what was done before it.
void AttachMessage(ISubclass* client, HWND window, std::int32_t message);
// Does nothing if the client is not attached.
void DetachMessage(ISubclass* client, HWND window, std::int32_t message) noexcept;
// Whether clients of the window get messages. That ends at WM_DESTROY, and a window may go on
// living after that message: a container can take it out of a form that is destroyed.
[[nodiscard]] bool isSubclassed(HWND window) noexcept;
// The message that is being dispatched, or the last one that was. One number serves all windows: a
// client that sends a subclassed message from inside its own sees that one afterwards.
[[nodiscard]] std::int32_t CurrentMessage() noexcept;
// Calls the procedure that the window had before it was subclassed. 0 if none is stored.
LRESULT CallOldWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

// For tests: another table of platform functions, and a listener to the trace texts, which are
// discarded otherwise. Null restores the default.
using Trace = void (*)(const char* text);
void useWindowApi(const WindowApi* windows) noexcept;
void useTrace(Trace trace) noexcept;

} // namespace corvina::MSubclass
