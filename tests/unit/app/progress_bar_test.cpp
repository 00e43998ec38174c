#include "ProgressBar.h"

#include <gtest/gtest.h>

namespace corvina::app {
namespace {

TEST(ProgressLine, fills_the_part_of_the_bar_that_was_played) {
    EXPECT_EQ(progressLine(0.5, L"0:00:01", L"0:00:02", L"", 31),
              L"[#####.....]  0:00:01 / 0:00:02");
}

TEST(ProgressLine, holds_a_fraction_beyond_the_end_at_the_end) {
    EXPECT_EQ(progressLine(7, L"a", L"b", L"", 19), L"[##########]  a / b");
    EXPECT_EQ(progressLine(-7, L"a", L"b", L"", 19), L"[..........]  a / b");
}

TEST(ProgressLine, leaves_the_bar_out_where_there_is_no_room) {
    EXPECT_EQ(progressLine(0.5, L"0:00:01", L"0:00:02", L"paused", 20), L"0:00:01 / 0:00:02  p");
}

TEST(ProgressLine, is_never_wider_than_it_may_be) {
    for (std::size_t columns = 0; columns < 120; ++columns)
        EXPECT_LE(progressLine(0.3, L"0:00:01", L"0:00:02", L"paused", columns).size(), columns);
}

} // namespace
} // namespace corvina::app
