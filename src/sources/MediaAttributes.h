#pragma once

// What the header of a Windows Media file holds: times, rates and tags.

#include <cstdint>
#include <windows.h>

#include <wmsdk.h>

namespace corvina {

class StrmTags;

struct MediaAttributes {
    std::uint64_t duration = 0; // in units of 100 nanoseconds
    std::uint64_t bitrate = 0;  // bits per second
    std::uint16_t seekable = 0; // as the file has it; the source says itself what it can do
};

// Reads the attributes of the whole file and of every stream; what a file does not hold stays 0.
// The tags are replaced. False if the reader has no header or does not count its attributes; a
// single one that cannot be read is left out.
[[nodiscard]] bool readMediaAttributes(IWMSyncReader& reader, MediaAttributes& attributes,
                                       StrmTags& tags);

} // namespace corvina
