#pragma once

// The false statements of a damaged ASF file (WMA, WMV) that GStreamer does not survive.
//
// Its demuxer gives up on an inconsistent header, and Wine's reader may then wait for the sound for
// ever. It also reserves as much memory as a payload states for its media object and an index for
// its entries; if there is not so much memory, the process ends.

#include <cstddef>
#include <cstdint>
#include <windows.h>

namespace corvina::wine {

class AsfFile {
public:
    // Reads the header. False for an ASF file that the demuxer cannot use; true for a file of
    // another kind.
    [[nodiscard]] bool read(HANDLE file);
    [[nodiscard]] bool isAsf() const { return firstPacket_ != 0; }
    [[nodiscard]] DWORD bitrate() const { return bitrate_; } // a second, of all streams

    // Replaces the sizes that cannot be true in bytes that were read at this position.
    void correct(std::uint64_t position, std::uint8_t* bytes, std::size_t size) const;

private:
    std::uint64_t firstPacket_ = 0; // 0 in a file of another kind
    std::uint64_t endOfPackets_ = 0;
    std::uint32_t packetSize_ = 0;
    std::uint32_t bitrate_ = 0;
};

} // namespace corvina::wine
