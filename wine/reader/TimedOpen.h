#pragma once

// Opens a stream on a thread of its own, because Wine's reader may never be done with it: where
// GStreamer gives a file up before it has found its sound, Wine waits for that sound for ever. Past
// the limit the thread is left to itself, with the reader and the stream.

#include <windows.h>

#include <wmsdk.h>

namespace corvina::wine {

inline const HRESULT openedInVain = HRESULT_FROM_WIN32(ERROR_TIMEOUT);

// What the reader answered, or openedInVain. Then nobody may call the reader any more.
[[nodiscard]] HRESULT openWithin(DWORD milliseconds, IWMSyncReader& reader, IStream& stream);

} // namespace corvina::wine
