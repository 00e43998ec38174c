#pragma once

// Conversions of floating-point values to integers: to nearest, ties to even, whatever rounding mode
// the host has set. A value that does not fit (or is no number) raises Overflow.

#include <cstdint>

namespace corvina {

// The nearest whole number as a double; infinities and NaN come back as they are.
[[nodiscard]] double roundHalfEven(double value) noexcept;

[[nodiscard]] std::int32_t roundToInt32(double value);
[[nodiscard]] std::int16_t roundToInt16(double value);

// A quotient as the framework computes it: n / 0 raises Division by zero, 0 / 0 Overflow.
[[nodiscard]] double divide(double dividend, double divisor);

} // namespace corvina
