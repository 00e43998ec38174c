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

// The bytes in what the source of a WAV file of uncompressed sound takes for a second, because the
// header says so, if that is wrong.
[[nodiscard]] std::optional<std::int32_t> misstatedRate(cSoundSTRM& source);

// So many frames, or what the source says of its length if their number is not known, in
// milliseconds. No more than a number can hold.
[[nodiscard]] std::int32_t durationMs(const std::optional<std::int64_t>& frames,
                                      cSoundSTRM& source);

// What the source says in milliseconds; 0 if it has no length that a number can hold, as damaged
// files may.
[[nodiscard]] std::int32_t statedDurationMs(cSoundSTRM& source);

} // namespace corvina
