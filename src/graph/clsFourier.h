#pragma once

// A fast Fourier transform for the spectrum display.
//
// The caller sets the size, writes the samples one by one and reads the spectrum one bin at a time;
// the transform runs by itself at the first read after an input has changed. Indexes are 1-based:
// sample 1 is the first, bin 1 is the constant part. Nothing is normalised: with the window off, N
// samples of value v give N * v / 2 in bin 1.
//
// One thread. Errors: 381 for an index outside 1 ... N or before a valid NumberOfSamples; 6
// (overflow) if a number is not finite. A write that fails changes no sample.

#include "graph/RadixTwoTransform.h"
#include "platform/PerformanceCounter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace corvina {

class clsFourier {
public:
    explicit clsFourier(const PerformanceCounterApi& counter = systemPerformanceCounter);

    // Sets N and makes all samples 0. Only powers of two from 2 on are taken; any other value is
    // ignored. Throws bad_alloc, with nothing changed, when memory does not reach.
    void NumberOfSamples(std::int32_t count);
    // N, or 0 before the first valid one.
    [[nodiscard]] std::int32_t NumberOfSamples() const noexcept;

    // Non-zero: RealIn weights each sample by a Blackman window; 0: it halves each sample.
    void WithTimeWindow(std::int32_t on) noexcept { timeWindow_ = on; }

    // Writes the real part and sets the imaginary part to 0, so call RealIn before ImagIn.
    void RealIn(std::int32_t index, double value);
    // Writes the imaginary part as it is, neither weighted nor halved.
    void ImagIn(std::int32_t index, double value);

    [[nodiscard]] double RealOut(std::int32_t index);
    [[nodiscard]] double ImagOut(std::int32_t index);
    // The magnitude.
    [[nodiscard]] double ComplexOut(std::int32_t index);

    // How long the last transform took, in milliseconds; 0 before the first.
    [[nodiscard]] float Timing() const noexcept;

private:
    [[nodiscard]] Complex& input(std::int32_t index);
    [[nodiscard]] const Complex& output(std::int32_t index);
    [[nodiscard]] double weight(std::int32_t index) noexcept;
    void checkIndex(std::int32_t index) const;
    void transform();

    const PerformanceCounterApi& counter_;
    std::vector<Complex> data_;
    std::vector<double> weights_;                // of the window, as far as they were needed
    std::optional<RadixTwoTransform> transform_; // empty while the size is unknown
    int bits_ = 0;                               // log2 N
    bool dirty_ = false;
    std::int32_t timeWindow_ = 0;
    LARGE_INTEGER frequency_{};
    LARGE_INTEGER started_{};
    LARGE_INTEGER ended_{};
};

} // namespace corvina
