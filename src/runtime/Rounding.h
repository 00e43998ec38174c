#pragma once

// Conversions of floating-point values to integers: to nearest, ties to even, whatever rounding
// mode the host has set. A value that does not fit (or is no number) raises Overflow.

#include <cstdint>

namespace corvina {

// The nearest whole number as a double; infinities and NaN come back as they are.
[[nodiscard]] double roundHalfEven(double value) noexcept;

// Rounds a value between -32768 and 32767 in the same way, fast enough for every sample of a
// stream. It has no branch: the processor could not predict which way the next sample is rounded.
[[nodiscard]] inline std::int16_t roundWithinInt16(float value) noexcept {
    // Raised above zero, the value is rounded down by cutting off its fraction. A float has 24 bits
    // and a double 53, so the sum is exact wherever the value is close to a half.
    const double raised = double{value} + 32768.5;
    const auto rounded = static_cast<std::int32_t>(raised); // a half has been rounded up
    const std::int32_t half = raised == rounded;            // 1 if the value was a half
    // A half that was rounded up to an odd number goes down to the even one below.
    return static_cast<std::int16_t>(rounded - (half & rounded) - 32768);
}

[[nodiscard]] std::int32_t roundToInt32(double value);
[[nodiscard]] std::int16_t roundToInt16(double value);

// A quotient. n / 0 raises Division by zero, 0 / 0 raises Overflow: hosts see these two numbers.
[[nodiscard]] double divide(double dividend, double divisor);

} // namespace corvina
