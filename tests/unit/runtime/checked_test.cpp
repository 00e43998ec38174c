#include "runtime/Checked.h"
#include "support/ErrorNumber.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace corvina {
namespace {

using test::errorNumberOf;

TEST(Checked, results_beyond_32_bits_raise_overflow) {
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(errorNumberOf([] { (void)add32(highest, 1); }), 6);
    EXPECT_EQ(errorNumberOf([] { (void)subtract32(lowest, 1); }), 6);
    EXPECT_EQ(errorNumberOf([] { (void)multiply32(65536, 32768); }), 6);
    EXPECT_EQ(multiply32(-65536, 32768), lowest);
}

TEST(Checked, a_remainder_has_the_sign_of_its_dividend) {
    EXPECT_EQ(remainder32(-7, 4), -3);
    EXPECT_EQ(remainder32(7, -4), 3);
    EXPECT_EQ(remainder32(std::numeric_limits<std::int32_t>::min(), -1), 0);
    EXPECT_EQ(errorNumberOf([] { (void)remainder32(1, 0); }), 11);
}

} // namespace
} // namespace corvina
