#pragma once

// The places of the format and of the samples in a WAVE file, found by reading the file itself: for
// the forms RF64 and BW64, whose lengths have 64 bits, for files whose length was left open, and
// for names that the system's RIFF functions cannot take.

#include "stream/FileAccess.h"
#include "stream/RiffChunk.h"

#include <cstdint>
#include <optional>

namespace corvina {

// From here on a length stands for one that was not known when the header was written.
inline constexpr std::uint32_t leastUnknownLength = 0x7FFFF000;

struct WaveChunks {
    bool is64 = false;        // RF64 or BW64, not RIFF
    bool isOpenEnded = false; // the writer could not go back to enter the length of the file
    RiffChunk format = {};
    RiffChunk data = {}; // its size is cut to what 32-bit positions reach
};

// Nothing if the file is no WAVE file or lacks one of the two chunks. Moves the file's position.
[[nodiscard]] std::optional<WaveChunks> readWaveChunks(const FileAccess& access,
                                                       const FileRecord& file);

} // namespace corvina
