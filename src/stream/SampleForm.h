#pragma once

// Linear samples that 16 bits need not hold: how they are stored, and which number each of them is.
// The lowest byte is first.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace corvina {

enum class SampleForm { integer24, integer32, float32, float64 };

[[nodiscard]] constexpr std::size_t bytesOf(SampleForm form) noexcept {
    switch (form) {
    case SampleForm::integer24:
        return 3;
    case SampleForm::float64:
        return 8;
    default:
        return 4;
    }
}

// A sample whose full scale is 1, as one whose full scale is that of 32 bits. What is too loud
// becomes the loudest number; what is no number counts as silence.
[[nodiscard]] constexpr std::int32_t toInteger(double sample) noexcept {
    constexpr double fullScale = 2147483648.0;
    const double scaled = sample * fullScale;
    if (scaled >= fullScale - 1)
        return std::numeric_limits<std::int32_t>::max();
    if (scaled > -fullScale)
        return static_cast<std::int32_t>(scaled);
    return scaled <= -fullScale ? std::numeric_limits<std::int32_t>::min() : 0;
}

template <typename Number>
[[nodiscard]] Number numberAt(const std::uint8_t* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

// A sample with its most significant bit in bit 31. valid: the bits of an integer that count.
[[nodiscard]] inline std::int32_t sampleAt(SampleForm form, const std::uint8_t* bytes,
                                           std::uint32_t valid) noexcept {
    switch (form) {
    case SampleForm::integer24:
        return static_cast<std::int32_t>((std::uint32_t{bytes[2]} << 24 |
                                          std::uint32_t{bytes[1]} << 16 |
                                          std::uint32_t{bytes[0]} << 8) &
                                         valid);
    case SampleForm::integer32:
        return static_cast<std::int32_t>(numberAt<std::uint32_t>(bytes) & valid);
    case SampleForm::float32:
        return toInteger(static_cast<double>(numberAt<float>(bytes)));
    case SampleForm::float64:
        return toInteger(numberAt<double>(bytes));
    }
    return 0;
}

} // namespace corvina
