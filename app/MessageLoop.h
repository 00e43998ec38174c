#pragma once

// Waits on a thread that owns windows: the control works by the messages of this thread.

#include <windows.h>

#include <functional>
#include <span>

namespace corvina::app {

// Waits until a message arrives, one of the handles is signalled or the time is over. Then it
// dispatches every message there is, except those for which handled returns true. Null handles are
// ignored.
void pumpMessages(std::span<const HANDLE> handles, DWORD timeoutMs,
                  const std::function<bool(MSG&)>& handled = {});

} // namespace corvina::app
