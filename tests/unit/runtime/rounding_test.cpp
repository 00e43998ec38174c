#include "runtime/Rounding.h"
#include "support/ErrorNumber.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace corvina {
namespace {

using test::errorNumberOf;

TEST(Rounding, ties_go_to_the_even_neighbour) {
    EXPECT_EQ(roundToInt32(0.5), 0);
    EXPECT_EQ(roundToInt32(1.5), 2);
    EXPECT_EQ(roundToInt32(2.5), 2);
    EXPECT_EQ(roundToInt32(-0.5), 0);
    EXPECT_EQ(roundToInt32(-1.5), -2);
    EXPECT_EQ(roundToInt32(-2.5), -2);
}

TEST(Rounding, other_values_go_to_the_nearest) {
    EXPECT_EQ(roundToInt32(2.4999999), 2);
    EXPECT_EQ(roundToInt32(2.5000001), 3);
    EXPECT_EQ(roundToInt32(-7.9), -8);
}

TEST(Rounding, the_quick_rounding_of_samples_agrees_with_the_general_one) {
    for (int eighth = -8 * 32768; eighth <= 8 * 32767; ++eighth) {
        const float value = static_cast<float>(eighth) / 8.0F;
        for (const float beside :
             {value, std::nextafter(value, -32768.0F), std::nextafter(value, 32767.0F)})
            ASSERT_EQ(roundWithinInt16(beside), roundToInt16(beside)) << beside;
    }
    EXPECT_EQ(roundWithinInt16(std::numeric_limits<float>::denorm_min()), 0);
    EXPECT_EQ(roundWithinInt16(-std::numeric_limits<float>::denorm_min()), 0);
}

TEST(Rounding, values_beyond_32_bits_raise_overflow) {
    EXPECT_EQ(roundToInt32(2147483647.4), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(errorNumberOf([] { (void)roundToInt32(2147483647.5); }), 6);
    EXPECT_EQ(roundToInt32(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(errorNumberOf([] { (void)roundToInt32(-2147483649.0); }), 6);
    EXPECT_EQ(errorNumberOf([] { (void)roundToInt32(std::numeric_limits<double>::quiet_NaN()); }),
              6);
    EXPECT_EQ(errorNumberOf([] { (void)roundToInt32(std::numeric_limits<double>::infinity()); }),
              6);
}

TEST(Rounding, values_beyond_16_bits_raise_overflow) {
    EXPECT_EQ(roundToInt16(32767.4), 32767);
    EXPECT_EQ(errorNumberOf([] { (void)roundToInt16(32767.5); }), 6);
}

TEST(Rounding, a_quotient_by_zero_raises_division_by_zero_and_zero_by_zero_overflow) {
    EXPECT_EQ(errorNumberOf([] { (void)divide(1.0, 0.0); }), 11);
    EXPECT_EQ(errorNumberOf([] { (void)divide(0.0, 0.0); }), 6);
    EXPECT_EQ(divide(1.0, 4.0), 0.25);
}

} // namespace
} // namespace corvina
