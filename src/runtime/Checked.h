#pragma once

// 32-bit signed arithmetic that raises Overflow (or Division by zero) instead of wrapping.

#include "runtime/RuntimeError.h"

#include <cstdint>
#include <limits>

namespace corvina {

[[nodiscard]] inline std::int32_t narrow32(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
        throwOverflow();
    return static_cast<std::int32_t>(value);
}

[[nodiscard]] inline std::int16_t narrow16(std::int32_t value) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max())
        throwOverflow();
    return static_cast<std::int16_t>(value);
}

[[nodiscard]] inline std::int32_t add32(std::int32_t a, std::int32_t b) {
    return narrow32(std::int64_t{a} + b);
}

[[nodiscard]] inline std::int32_t subtract32(std::int32_t a, std::int32_t b) {
    return narrow32(std::int64_t{a} - b);
}

[[nodiscard]] inline std::int32_t multiply32(std::int32_t a, std::int32_t b) {
    return narrow32(std::int64_t{a} * b);
}

// The remainder has the sign of the dividend.
[[nodiscard]] inline std::int32_t remainder32(std::int32_t a, std::int32_t b) {
    if (b == 0)
        throwDivisionByZero();
    return b == -1 ? 0 : a % b;
}

} // namespace corvina
