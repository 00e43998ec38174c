#pragma once

// The arithmetic of a radix-2 Fourier transform with the +i sign convention and no normalisation.
//
// Every twiddle factor comes from the one before it by a rotation, never from a table, and every
// complex product, sum and difference is computed as written below, one rounding an operation: the
// results are the same bit for bit however the loops are ordered.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvina {

struct alignas(16) Complex {
    double re = 0.0;
    double im = 0.0;
};

// Advances a twiddle factor w by the angle 2 pi / size:
//   change = alpha * w.re + beta * w.im
//   w.im   = w.im + beta * w.re - alpha * w.im
//   w.re   = w.re - change
struct TwiddleRotation {
    double alpha = 0.0; // 2 sin^2(pi / size)
    double beta = 0.0;  // sin(2 pi / size)
};

class RadixTwoTransform {
public:
    // size: a power of two, at least 2.
    explicit RadixTwoTransform(std::int32_t size);

    // Transforms size values that stand in bit-reversed order into their spectrum, in place.
    void run(std::span<Complex> data) const noexcept;

private:
    // From that stage on, up to that end.
    void runStages(std::span<Complex> data, std::size_t stage, std::size_t end) const noexcept;

    // Stage i joins blocks of 2^i values into blocks twice as long.
    std::vector<TwiddleRotation> stages_;
};

} // namespace corvina
