#pragma once

// Times of the Windows Media reader: counts of 100 nanoseconds, which are milliseconds with exactly
// four decimal places.

#include <cstdint>

namespace corvina {

// Rounded to nearest, ties to even, on the whole number itself, so that no digit is lost whatever
// the size. More than 32 bits raise Overflow.
[[nodiscard]] std::int32_t mediaMilliseconds(std::uint64_t time);

// The place that lies percent of the whole duration from the start, cut to whole units.
[[nodiscard]] std::uint64_t mediaTimeAtPercent(std::uint64_t duration, double percent);

} // namespace corvina
