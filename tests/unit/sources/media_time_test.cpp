#include "runtime/RuntimeError.h"
#include "sources/MediaTime.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

TEST(MediaTime, milliseconds_round_to_nearest_and_ties_to_even) {
    EXPECT_EQ(mediaMilliseconds(0), 0);
    EXPECT_EQ(mediaMilliseconds(4'999), 0);
    EXPECT_EQ(mediaMilliseconds(5'000), 0);
    EXPECT_EQ(mediaMilliseconds(5'001), 1);
    EXPECT_EQ(mediaMilliseconds(15'000), 2);
    EXPECT_EQ(mediaMilliseconds(25'000), 2);
    EXPECT_EQ(mediaMilliseconds(25'001), 3);
}

// In floating point 2147483646.5 and a ten-thousandth more are still apart, but only just.
TEST(MediaTime, the_largest_times_are_rounded_exactly) {
    EXPECT_EQ(mediaMilliseconds(21'474'836'465'000), 2147483646);
    EXPECT_EQ(mediaMilliseconds(21'474'836'465'001), 2147483647);
    EXPECT_EQ(mediaMilliseconds(21'474'836'474'999), 2147483647);
}

TEST(MediaTime, more_than_32_bits_overflow) {
    EXPECT_THROW((void)mediaMilliseconds(21'474'836'475'000), RuntimeError);
    EXPECT_THROW((void)mediaMilliseconds(0xFFFF'FFFF'FFFF'FFFF), RuntimeError);
}

TEST(MediaTime, a_percentage_is_cut_to_whole_units) {
    EXPECT_EQ(mediaTimeAtPercent(199, 1), 1u);
    EXPECT_EQ(mediaTimeAtPercent(30'000'000, 33), 9'900'000u);
    EXPECT_EQ(mediaTimeAtPercent(30'000'000, 0), 0u);
    EXPECT_EQ(mediaTimeAtPercent(30'000'000, 100), 30'000'000u);
}

TEST(MediaTime, a_place_of_more_than_64_bits_overflows) {
    EXPECT_THROW((void)mediaTimeAtPercent(0xFFFF'FFFF'FFFF'FFFF, 101), RuntimeError);
}

} // namespace
} // namespace corvina
