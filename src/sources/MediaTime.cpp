#include "sources/MediaTime.h"

#include "runtime/Checked.h"

#include <cmath>

namespace corvina {
namespace {

constexpr std::uint64_t unitsPerMillisecond = 10'000;

} // namespace

std::int32_t mediaMilliseconds(std::uint64_t time) {
    std::uint64_t whole = time / unitsPerMillisecond;
    const std::uint64_t rest = time % unitsPerMillisecond;
    constexpr std::uint64_t half = unitsPerMillisecond / 2;
    if (rest > half || (rest == half && whole % 2 != 0))
        ++whole;
    return narrow32(static_cast<std::int64_t>(whole));
}

std::uint64_t mediaTimeAtPercent(std::uint64_t duration, double percent) {
    const double milliseconds = static_cast<double>(duration) / unitsPerMillisecond;
    const double target = std::trunc(milliseconds / 100 * percent * unitsPerMillisecond);
    // 2^64: from there on the number has no place in the reader's 64 bits.
    if (!(target >= 0 && target < 18446744073709551616.0))
        throwOverflow();
    return static_cast<std::uint64_t>(target);
}

} // namespace corvina
