#pragma once

// What a damaged ASF file (WMA, WMV) says of itself, and GStreamer takes at its word.
//
// Its demuxer gives up a header that does not hold together, and Wine's reader may then wait for
// ever for what is to come. It reserves as much memory as a payload claims for its media object,
// and as an index claims for its entries; where there is not so much, the process is ended.

#include <cstddef>
#include <cstdint>
#include <windows.h>

namespace corvina::wine {

class AsfFile {
public:
    // Reads the header. False for an ASF file of which the demuxer can make nothing; a file of
    // another kind is none of our business.
    [[nodiscard]] bool read(HANDLE file);
    [[nodiscard]] bool isAsf() const { return firstPacket_ != 0; }
    [[nodiscard]] DWORD bitrate() const { return bitrate_; } // a second, of all streams

    // Replaces the claims that cannot be true in bytes that were read at this position.
    void correct(std::uint64_t position, std::uint8_t* bytes, std::size_t size) const;

private:
    std::uint64_t firstPacket_ = 0; // 0 in a file of another kind
    std::uint64_t endOfPackets_ = 0;
    std::uint32_t packetSize_ = 0;
    std::uint32_t bitrate_ = 0;
};

} // namespace corvina::wine
