#pragma once

// The two ends of the range of a 32-bit number.

#include <cstdint>
#include <limits>

namespace corvina::test {

inline constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

} // namespace corvina::test
