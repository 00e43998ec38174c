#pragma once

// What the equalizer has to do to a tone, computed from the definition of its filters in double
// precision.

#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

namespace corvina::test {

[[nodiscard]] inline double bandCentre(std::size_t band) {
    return 31.25 * std::pow(2, static_cast<double>(band));
}

// Decibels of so many bands in a row at a frequency. gains: of each band, in decibels.
[[nodiscard]] inline double equalizerCurve(std::span<const float> gains, double frequency,
                                           double sampleRate = 44100) {
    double decibels = 0;
    const double w = 2 * std::numbers::pi * frequency / sampleRate;
    for (std::size_t band = 0; band < gains.size(); ++band) {
        const double w0 = 2 * std::numbers::pi * bandCentre(band) / sampleRate;
        const double a = std::pow(10, gains[band] / 40.0);
        const double alpha = std::sin(w0) * std::sinh(std::log(2.0) / 2 * w0 / std::sin(w0));
        const auto square = [w](double c0, double c1, double c2) {
            const double real = c0 + c1 * std::cos(w) + c2 * std::cos(2 * w);
            const double imaginary = c1 * std::sin(w) + c2 * std::sin(2 * w);
            return real * real + imaginary * imaginary;
        };
        decibels += 10 * std::log10(square(1 + alpha * a, -2 * std::cos(w0), 1 - alpha * a) /
                                    square(1 + alpha / a, -2 * std::cos(w0), 1 - alpha / a));
    }
    return decibels;
}

} // namespace corvina::test
