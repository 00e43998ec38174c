#pragma once

// The pages of an Ogg file. Each carries a checksum, which hides most damage from the decoder: a
// test that changes a page corrects the sum behind it.

#include "support/FileBytes.h"

#include <cstdint>
#include <cstring>

namespace corvina::test {

// The bytes of the page there; 0 if no whole page is there.
[[nodiscard]] inline std::size_t oggPageSize(const Bytes& file, std::size_t at) {
    constexpr std::size_t header = 27;
    if (at + header > file.size() || std::memcmp(&file[at], "OggS", 4) != 0)
        return 0;
    const std::size_t segments = file[at + 26];
    std::size_t size = header + segments;
    for (std::size_t segment = 0; segment < segments && at + size <= file.size(); ++segment)
        size += file[at + header + segment];
    return at + size <= file.size() ? size : 0;
}

[[nodiscard]] inline std::uint32_t oggPageChecksum(const std::uint8_t* page, std::size_t size) {
    std::uint32_t sum = 0;
    for (std::size_t at = 0; at < size; ++at) {
        const std::uint8_t byte = at >= 22 && at < 26 ? std::uint8_t{0} : page[at];
        sum ^= static_cast<std::uint32_t>(byte) << 24;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum << 1) ^ (sum & 0x80000000u ? 0x04C11DB7u : 0u);
    }
    return sum;
}

// Gives each page the right checksum, up to the first damaged one.
inline void correctOggPages(Bytes& file) {
    for (std::size_t at = 0; const std::size_t size = oggPageSize(file, at); at += size) {
        const std::uint32_t sum = oggPageChecksum(&file[at], size);
        for (std::size_t byte = 0; byte < 4; ++byte)
            file[at + 22 + byte] = static_cast<std::uint8_t>(sum >> 8 * byte);
    }
}

} // namespace corvina::test
