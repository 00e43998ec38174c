#pragma once

// The bitrate of files that do not state one.

#include <cstdint>
#include <string>

namespace corvina {

// Bits per second: the size of the file over its duration. 0 if the file or its duration is
// unknown.
[[nodiscard]] std::int32_t averageBitrate(const std::wstring& path, double seconds);

} // namespace corvina
