#pragma once

// Finds the sound in an MPEG audio file, behind whatever programs put in front of it: several ID3v2
// tags, one after the other or apart, zeros of any length, and up to 64 KB of other bytes.

#include <cstdint>
#include <optional>
#include <windows.h>

namespace corvina::wine {

struct MpegStart {
    std::uint64_t firstFrame = 0; // byte of the file
    // Nothing, or a single tag, is in front of the first frame: GStreamer finds it by itself.
    bool usual = true;
};

// Empty if the file holds no MPEG audio there.
[[nodiscard]] std::optional<MpegStart> findMpegStart(HANDLE file);

// How long the frames from the first one on sound, in units of 100 nanoseconds. What is no frame is
// passed over; a first frame that only describes the others does not count. Ends after an hour of
// sound.
[[nodiscard]] std::uint64_t lengthOfMpegFrames(HANDLE file, std::uint64_t firstFrame);

} // namespace corvina::wine
