#include "runtime/Rounding.h"

#include "runtime/RuntimeError.h"

#include <cmath>
#include <limits>

namespace corvina {
namespace {

template <typename Integer>
Integer roundTo(double value) {
    const double whole = roundHalfEven(value);
    if (!(whole >= std::numeric_limits<Integer>::min() &&
          whole <= std::numeric_limits<Integer>::max()))
        throwOverflow();
    return static_cast<Integer>(whole);
}

} // namespace

double roundHalfEven(double value) noexcept {
    const double below = std::floor(value);
    const double rest = value - below;
    if (rest < 0.5)
        return below;
    if (rest > 0.5)
        return below + 1.0;
    if (rest == 0.5)
        return std::fmod(below, 2.0) == 0.0 ? below : below + 1.0;
    return value;
}

std::int32_t roundToInt32(double value) {
    return roundTo<std::int32_t>(value);
}

std::int16_t roundToInt16(double value) {
    return roundTo<std::int16_t>(value);
}

double divide(double dividend, double divisor) {
    if (divisor == 0.0) {
        if (dividend == 0.0)
            throwOverflow();
        throwDivisionByZero();
    }
    return dividend / divisor;
}

} // namespace corvina
