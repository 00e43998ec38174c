#pragma once

// Conversions of floating-point values to integers: to nearest, ties to even, whatever rounding
// mode the host has set. A value that does not fit (or is no number) raises Overflow.

#include <cstdint>

namespace corvina {

// The nearest whole number as a double; infinities and NaN come back as they are.
[[nodiscard]] double roundHalfEven(double value) noexcept;

// The same for a value that is known to lie within 32 bits, quick enough for every sample of a
// stream.
[[nodiscard]] constexpr std::int32_t roundWithinInt32(double value) noexcept {
    const auto whole = static_cast<std::int32_t>(value);
    const double rest = value - whole;
    const std::int32_t odd = whole & 1;
    return whole + (rest > 0.5 || (rest == 0.5 && odd)) - (rest < -0.5 || (rest == -0.5 && odd));
}

[[nodiscard]] std::int32_t roundToInt32(double value);
[[nodiscard]] std::int16_t roundToInt16(double value);

// A quotient as the framework computes it: n / 0 raises Division by zero, 0 / 0 Overflow.
[[nodiscard]] double divide(double dividend, double divisor);

} // namespace corvina
