#include "graph/clsFourier.h"
#include "runtime/BitReversal.h"
#include "support/ErrorNumber.h"

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace corvina {
namespace {

using test::errorNumberOf;

constexpr double infinity = std::numeric_limits<double>::infinity();

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

TEST(Fourier, a_size_that_is_no_power_of_two_is_ignored) {
    clsFourier fourier;
    fourier.NumberOfSamples(8);
    fourier.RealIn(1, 2.0);
    for (const std::int32_t size :
         {1000, 0, 1, 3, 1023, -1, -8, std::numeric_limits<std::int32_t>::min(),
          std::numeric_limits<std::int32_t>::max()}) {
        fourier.NumberOfSamples(size);
        EXPECT_EQ(fourier.NumberOfSamples(), 8) << size;
    }
    EXPECT_EQ(fourier.RealOut(1), 1.0);
}

TEST(Fourier, a_power_of_two_is_taken) {
    clsFourier fourier;
    fourier.NumberOfSamples(1024);
    EXPECT_EQ(fourier.NumberOfSamples(), 1024);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(1024); }), 0);
}

TEST(Fourier, a_size_that_memory_cannot_hold_leaves_the_one_before) {
    clsFourier fourier;
    fourier.NumberOfSamples(4);
    fourier.RealIn(1, 1.0);
    EXPECT_THROW(fourier.NumberOfSamples(1 << 30), std::bad_alloc);
    EXPECT_EQ(fourier.NumberOfSamples(), 4);
    EXPECT_EQ(fourier.RealOut(4), 0.5);
}

TEST(Fourier, setting_the_size_again_makes_all_samples_zero) {
    clsFourier fourier;
    fourier.NumberOfSamples(4);
    fourier.RealIn(1, 1.0);
    fourier.NumberOfSamples(4);
    EXPECT_EQ(fourier.ComplexOut(1), 0.0);
}

TEST(Fourier, a_constant_of_one_gives_half_the_size_in_the_first_bin_and_nothing_elsewhere) {
    clsFourier fourier;
    fourier.NumberOfSamples(8);
    for (std::int32_t index = 1; index <= 8; ++index)
        fourier.RealIn(index, 1.0);
    EXPECT_EQ(fourier.RealOut(1), 4.0);
    EXPECT_EQ(fourier.ImagOut(1), 0.0);
    for (std::int32_t index = 2; index <= 8; ++index)
        EXPECT_EQ(fourier.ComplexOut(index), 0.0) << index;
}

TEST(Fourier, an_index_outside_the_samples_is_error_381_with_its_text) {
    clsFourier fourier;
    fourier.NumberOfSamples(16);
    try {
        (void)fourier.ComplexOut(17);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 381);
        EXPECT_EQ(error.text(), L"Index out of range or number of samples unknown");
    }
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.ComplexOut(16); }), 0);
}

TEST(Fourier, every_member_with_an_index_checks_it) {
    clsFourier fourier;
    fourier.NumberOfSamples(16);
    for (const std::int32_t index : {0, 17, -1, std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(errorNumberOf([&] { fourier.RealIn(index, 1.0); }), 381);
        EXPECT_EQ(errorNumberOf([&] { fourier.ImagIn(index, 1.0); }), 381);
        EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(index); }), 381);
        EXPECT_EQ(errorNumberOf([&] { (void)fourier.ImagOut(index); }), 381);
        EXPECT_EQ(errorNumberOf([&] { (void)fourier.ComplexOut(index); }), 381);
    }
}

TEST(Fourier, nothing_can_be_read_or_written_before_a_valid_size) {
    clsFourier fourier;
    fourier.NumberOfSamples(1000);
    EXPECT_EQ(fourier.NumberOfSamples(), 0);
    EXPECT_EQ(errorNumberOf([&] { fourier.RealIn(1, 1.0); }), 381);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.ComplexOut(1); }), 381);
}

TEST(Fourier, the_real_part_clears_the_imaginary_part) {
    clsFourier fourier;
    fourier.NumberOfSamples(2);
    fourier.ImagIn(1, 5.0);
    fourier.RealIn(1, 6.0);
    EXPECT_EQ(fourier.ImagOut(1), 0.0);
    EXPECT_EQ(fourier.RealOut(1), 3.0);
}

TEST(Fourier, the_imaginary_part_is_neither_halved_nor_weighted) {
    for (const std::int32_t window : {0, 1}) {
        clsFourier fourier;
        fourier.NumberOfSamples(8);
        fourier.WithTimeWindow(window);
        fourier.ImagIn(1, 5.0);
        EXPECT_EQ(fourier.ImagOut(1), 5.0);
    }
}

TEST(Fourier, the_window_weighs_the_first_and_the_last_sample_with_nothing) {
    for (const std::int32_t index : {1, 8}) {
        clsFourier fourier;
        fourier.NumberOfSamples(8);
        fourier.WithTimeWindow(-1);
        fourier.RealIn(index, 1.0);
        EXPECT_NEAR(fourier.ComplexOut(1), 0.0, 1e-16) << index;
    }
}

TEST(Fourier, the_window_spans_from_the_first_to_the_highest_index) {
    const double twoPi = 2.0 * (4.0 * std::atan(1.0));
    for (std::int32_t index = 1; index <= 16; ++index) {
        clsFourier fourier;
        fourier.NumberOfSamples(16);
        fourier.WithTimeWindow(1);
        fourier.RealIn(index, 3.0);
        const double angle = (index - 1) * twoPi / 15;
        EXPECT_EQ(fourier.RealOut(1),
                  3.0 * (0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle)));
    }
}

TEST(Fourier, the_window_counts_when_a_sample_is_written) {
    clsFourier fourier;
    fourier.NumberOfSamples(2);
    fourier.RealIn(1, 8.0);
    fourier.WithTimeWindow(1);
    EXPECT_EQ(fourier.RealOut(1), 4.0);
}

// A counter three ticks further at each call.
int counterReads;
BOOL WINAPI thousandTicks(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1000;
    return TRUE;
}
BOOL WINAPI fourThousandTicks(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 4000;
    return TRUE;
}
BOOL WINAPI nextTick(LARGE_INTEGER* count) {
    count->QuadPart = 1'000'000'000'000 + 3LL * counterReads++;
    return TRUE;
}

TEST(Fourier, outputs_read_twice_are_transformed_once) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    fourier.RealIn(2, 1.0);
    EXPECT_EQ(counterReads, 0);
    EXPECT_EQ(fourier.Timing(), 0.0F);
    const double first = fourier.RealOut(3);
    EXPECT_EQ(fourier.RealOut(3), first);
    (void)fourier.ComplexOut(1);
    EXPECT_EQ(counterReads, 2);
    EXPECT_EQ(fourier.Timing(), 3.0F);
}

TEST(Fourier, a_written_sample_brings_a_new_transform) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    (void)fourier.RealOut(1);
    fourier.RealIn(2, 1.0);
    (void)fourier.RealOut(1);
    fourier.ImagIn(2, 1.0);
    (void)fourier.RealOut(1);
    EXPECT_EQ(counterReads, 6);
}

TEST(Fourier, a_refused_index_brings_no_transform) {
    const PerformanceCounterApi counter{&thousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(9); }), 381);
    EXPECT_EQ(counterReads, 0);
}

TEST(Fourier, the_time_is_told_in_milliseconds_whatever_the_counters_frequency) {
    const PerformanceCounterApi counter{&fourThousandTicks, &nextTick};
    counterReads = 0;
    clsFourier fourier(counter);
    fourier.NumberOfSamples(8);
    (void)fourier.RealOut(1);
    EXPECT_EQ(fourier.Timing(), 0.75F);
}

TEST(Fourier, the_time_is_measured_with_the_systems_counter) {
    clsFourier fourier;
    fourier.NumberOfSamples(65536);
    (void)fourier.RealOut(1);
    EXPECT_GT(fourier.Timing(), 0.0F);
}

TEST(Fourier, samples_too_large_for_the_sum_raise_overflow) {
    clsFourier fourier;
    fourier.NumberOfSamples(4);
    for (std::int32_t index = 1; index <= 4; ++index)
        fourier.RealIn(index, 1.7e308);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(1); }), 6);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.RealOut(1); }), 6) << "and again";
}

TEST(Fourier, a_magnitude_too_large_raises_overflow) {
    clsFourier fourier;
    fourier.NumberOfSamples(2);
    fourier.RealIn(1, 1e200);
    EXPECT_EQ(fourier.RealOut(1), 5e199);
    EXPECT_EQ(errorNumberOf([&] { (void)fourier.ComplexOut(1); }), 6);
}

TEST(Fourier, a_sample_that_is_no_finite_number_raises_overflow_and_is_not_stored) {
    clsFourier fourier;
    fourier.NumberOfSamples(2);
    fourier.RealIn(1, 2.0);
    for (const double value : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(errorNumberOf([&] { fourier.RealIn(1, value); }), 6);
        EXPECT_EQ(errorNumberOf([&] { fourier.ImagIn(1, value); }), 6);
    }
    EXPECT_EQ(fourier.RealOut(1), 1.0);
    EXPECT_EQ(fourier.ImagOut(1), 0.0);
}

} // namespace
} // namespace corvina
