// Sizes, indexes, the window and numbers out of range.

#include "graph/clsFourier.h"
#include "runtime/BitReversal.h"
#include "support/ErrorNumber.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <new>

namespace corvina {
namespace {

using test::errorNumberOf;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Fourier, its_creation_fills_the_shared_table_of_reversed_bits) {
    auto& table = const_cast<BitReversalTable&>(bitReversalTable());
    table.fill(-1);
    const clsFourier fourier;
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[1], 512);
    EXPECT_EQ(table[1022], 511);
    EXPECT_EQ(table[1023], 1023);
}

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
