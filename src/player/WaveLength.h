#pragma once

// How many frames of sound a WAV file holds: what its header counts, not what its average rate
// suggests, which some writers compute wrongly.

#include <cstdint>
#include <optional>
#include <string>

namespace corvina {

class cSoundSTRM;

// source: has opened the file. Nothing if that is not the source of WAV files, or if the blocks of
// the file's format cannot be counted.
[[nodiscard]] std::optional<std::int64_t> countFrames(const std::wstring& file, cSoundSTRM& source);

} // namespace corvina
