// The spectrum of every size, beside the algorithm written plainly and an exact transform.

#include "graph/clsFourier.h"
#include "runtime/BitReversal.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace corvina {
namespace {

// Noise in -1 ... 1, the same on every run.
std::vector<Complex> noise(std::int32_t count, bool imaginary) {
    std::mt19937 random(static_cast<unsigned>(count));
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<Complex> samples(static_cast<std::size_t>(count));
    for (Complex& sample : samples) {
        sample.re = value(random);
        sample.im = imaginary ? value(random) : 0.0;
    }
    return samples;
}

void write(clsFourier& fourier, const std::vector<Complex>& samples) {
    fourier.NumberOfSamples(static_cast<std::int32_t>(samples.size()));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        fourier.RealIn(static_cast<std::int32_t>(i + 1), samples[i].re);
        fourier.ImagIn(static_cast<std::int32_t>(i + 1), samples[i].im);
    }
}

std::vector<Complex> read(clsFourier& fourier) {
    std::vector<Complex> bins;
    for (std::int32_t index = 1; index <= fourier.NumberOfSamples(); ++index)
        bins.push_back({fourier.RealOut(index), fourier.ImagOut(index)});
    return bins;
}

// The algorithm as it is defined: block after block, the twiddle factor advanced within each.
void transformPlainly(std::vector<Complex>& data) {
    const double pi = 4.0 * std::atan(1.0);
    const auto highest = static_cast<std::int64_t>(data.size()) - 1;
    for (std::int64_t half = 1; half <= highest;) {
        const std::int64_t size = 2 * half;
        const double sine = std::sin(pi / static_cast<double>(size));
        const double alpha = 2.0 * (sine * sine);
        const double beta = std::sin((pi + pi) / static_cast<double>(size));
        for (std::int64_t s = 0; s <= highest; s += size) {
            double wRe = 1.0;
            double wIm = 0.0;
            for (std::int64_t k = s; k <= s + half - 1; ++k) {
                Complex& low = data[static_cast<std::size_t>(k)];
                Complex& high = data[static_cast<std::size_t>(k + half)];
                const double tRe = wRe * high.re - wIm * high.im;
                const double tIm = wRe * high.im + wIm * high.re;
                high.re = low.re - tRe;
                high.im = low.im - tIm;
                low.re = low.re + tRe;
                low.im = low.im + tIm;
                const double temp = alpha * wRe + beta * wIm;
                wIm = wIm + beta * wRe - alpha * wIm;
                wRe = wRe - temp;
            }
        }
        half = size;
    }
}

// What the object holds before the transform: halved real parts in bit-reversed order.
std::vector<Complex> stored(const std::vector<Complex>& samples) {
    int bits = 0;
    while (std::size_t{1} << bits < samples.size())
        ++bits;
    std::vector<Complex> data(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i)
        data[reverseBits(static_cast<std::uint32_t>(i), bits)] = {samples[i].re / 2.0,
                                                                  samples[i].im};
    return data;
}

// Distance of the bins to an exact discrete Fourier transform, relative to the length of the
// latter. Of large sizes only every 509th bin is compared.
double relativeError(const std::vector<Complex>& samples, const std::vector<Complex>& bins) {
    const std::size_t n = samples.size();
    const long double step =
        2.0L * 3.14159265358979323846264338327950288L / static_cast<long double>(n);
    std::vector<std::complex<long double>> roots(n);
    for (std::size_t i = 0; i < n; ++i)
        roots[i] = {std::cos(step * static_cast<long double>(i)),
                    std::sin(step * static_cast<long double>(i))};
    long double error = 0.0L;
    long double length = 0.0L;
    for (std::size_t bin = 0; bin<n; bin += n> 2048 ? 509 : 1) {
        std::complex<long double> exact = 0.0L;
        for (std::size_t i = 0; i < n; ++i)
            exact += std::complex<long double>(samples[i].re / 2.0L, samples[i].im) *
                     roots[static_cast<std::size_t>(std::uint64_t{bin} * i % n)];
        error += std::norm(exact - std::complex<long double>(bins[bin].re, bins[bin].im));
        length += std::norm(exact);
    }
    return static_cast<double>(std::sqrt(error / length));
}

class FourierOfEverySize : public testing::TestWithParam<std::int32_t> {};

TEST_P(FourierOfEverySize, equals_the_plainly_written_algorithm_bit_for_bit) {
    const auto samples = noise(GetParam(), true);
    clsFourier fourier;
    write(fourier, samples);
    auto expected = stored(samples);
    transformPlainly(expected);
    const auto bins = read(fourier);
    for (std::size_t i = 0; i < bins.size(); ++i) {
        ASSERT_EQ(bins[i].re, expected[i].re) << "bin " << i;
        ASSERT_EQ(bins[i].im, expected[i].im) << "bin " << i;
        ASSERT_EQ(std::signbit(bins[i].re), std::signbit(expected[i].re)) << "bin " << i;
        ASSERT_EQ(std::signbit(bins[i].im), std::signbit(expected[i].im)) << "bin " << i;
    }
}

TEST_P(FourierOfEverySize, is_the_discrete_fourier_transform_with_positive_sign) {
    const auto samples = noise(GetParam(), true);
    clsFourier fourier;
    write(fourier, samples);
    EXPECT_LE(relativeError(samples, read(fourier)), 2e-14);
}

INSTANTIATE_TEST_SUITE_P(, FourierOfEverySize,
                         testing::Values(2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192,
                                         16384, 32768, 65536),
                         [](const auto& size) { return std::to_string(size.param) + "_points"; });

} // namespace
} // namespace corvina
