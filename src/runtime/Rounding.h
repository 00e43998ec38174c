#pragma once

// Conversions of floating-point values to integers: to nearest, ties to even, whatever rounding
// mode the host has set. A value that does not fit (or is no number) raises Overflow.

#include <cstdint>

namespace corvina {

// The nearest whole number as a double; infinities and NaN come back as they are.
[[nodiscard]] double roundHalfEven(double value) noexcept;

// The same for a value between -32768 and 32767, quick enough for every sample of a stream: without
// jumps, because which way a sample is rounded cannot be foretold.
[[nodiscard]] inline std::int16_t roundWithinInt16(float value) noexcept {
    // Above zero the next whole number below is where a conversion cuts off. In double precision
    // the sum is exact as far as it matters: a float's last bit, next to a half, is far from its
    // end.
    const double raised = double{value} + 32768.5;
    const auto rounded = static_cast<std::int32_t>(raised); // halves went up
    const std::int32_t half = raised == rounded;
    return static_cast<std::int16_t>(rounded - (half & rounded) - 32768);
}

[[nodiscard]] std::int32_t roundToInt32(double value);
[[nodiscard]] std::int16_t roundToInt16(double value);

// A quotient as the framework computes it: n / 0 raises Division by zero, 0 / 0 Overflow.
[[nodiscard]] double divide(double dividend, double divisor);

} // namespace corvina
