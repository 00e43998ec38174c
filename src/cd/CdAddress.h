#pragma once

// Addresses on a CD. A logical block address (LBA) counts raw sectors from the start of the program
// area, where the first track of a normal disc begins; a minute/second/frame address (MSF) counts
// from two seconds before it.

#include "runtime/Checked.h"

#include <cstdint>

namespace corvina {

inline constexpr std::int32_t bytesPerSector = 2352;
inline constexpr std::int32_t sectorsPerSecond = 75;
// Sectors between MSF 00:00:00 and LBA 0.
inline constexpr std::int32_t pregapSectors = 150;

// Raises Overflow for more than 2 GB.
[[nodiscard]] inline std::int32_t bytesOfSectors(std::int32_t sectors) {
    return multiply32(sectors, bytesPerSector);
}

// Addresses from minute 90 on lie in the lead-in, before the program area, and come out negative:
// 99:59:74 is the sector before 00:00:00. With programArea set every minute counts as it stands,
// for overlong discs.
[[nodiscard]] constexpr std::int32_t msfToLba(std::uint8_t minute, std::uint8_t second,
                                              std::uint8_t frame,
                                              bool programArea = false) noexcept {
    constexpr std::int32_t wholeCircle = 100 * 60 * sectorsPerSecond;
    const std::int32_t lba = (minute * 60 + second) * sectorsPerSecond + frame - pregapSectors;
    return minute < 90 || programArea ? lba : lba - wholeCircle;
}

} // namespace corvina
