#pragma once

// Opens a stream on a thread of its own, because Wine's reader may never be done with it: if
// GStreamer gives a file up before it has found its sound, Wine waits for that sound for ever.
// After the limit the thread is left running, with the reader and the stream.

#include <windows.h>

#include <wmsdk.h>

namespace corvina::wine {

inline const HRESULT openedInVain = HRESULT_FROM_WIN32(ERROR_TIMEOUT);

// The reader's result, or openedInVain. After the latter nobody may call the reader any more.
[[nodiscard]] HRESULT openWithin(DWORD milliseconds, IWMSyncReader& reader, IStream& stream);

} // namespace corvina::wine
