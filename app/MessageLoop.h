#pragma once

// Waiting on a thread that owns windows: the control lives by the messages of this thread.

#include <windows.h>

#include <functional>
#include <span>

namespace corvina::app {

// Waits until a message arrives, one of the handles is signalled or the time is over, then
// dispatches every message there is, but for those that handled takes. Null handles are passed
// over.
void pumpMessages(std::span<const HANDLE> handles, DWORD timeoutMs,
                  const std::function<bool(MSG&)>& handled = {});

} // namespace corvina::app
