#pragma once

// A look over an MP4 file before the system's decoder gets it. A decoder may wait for ever for the
// sound of a track whose tables contradict each other (Wine's does, and after a few of those it
// reads no further file in this process).

#include "platform/FileApi.h"

#include <string>

namespace corvina {

// False for an MP4 file without a track of sound whose tables hold together. Any other kind of file
// is left to the decoder.
[[nodiscard]] bool mayBePlayed(const std::wstring& path, const FileApi& files = systemFileApi);

} // namespace corvina
