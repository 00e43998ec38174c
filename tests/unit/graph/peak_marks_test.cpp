#include "graph/PeakMarks.h"

#include <array>
#include <gtest/gtest.h>

namespace corvina {
namespace {

constexpr std::int32_t hold = 3;

TEST(PeakMarks, rise_with_their_bars) {
    PeakMarks marks;
    marks.update(std::array{0.25, 0.5}, hold);
    marks.update(std::array{0.75, 0.25}, hold);
    ASSERT_EQ(marks.levels().size(), 2u);
    EXPECT_EQ(marks.levels()[0], 0.75);
    EXPECT_EQ(marks.levels()[1], 0.5);
}

TEST(PeakMarks, stay_for_the_hold_and_then_sink_to_their_bars) {
    PeakMarks marks;
    marks.update(std::array{0.5}, hold);
    for (int picture = 0; picture < hold; ++picture) {
        marks.update(std::array{0.45}, hold);
        EXPECT_EQ(marks.levels()[0], 0.5) << picture;
    }
    marks.update(std::array{0.45}, hold);
    EXPECT_NEAR(marks.levels()[0], 0.48, 1e-12);
    marks.update(std::array{0.45}, hold);
    marks.update(std::array{0.45}, hold);
    EXPECT_EQ(marks.levels()[0], 0.45);
}

TEST(PeakMarks, hold_again_once_lifted) {
    PeakMarks marks;
    marks.update(std::array{0.5}, 1);
    marks.update(std::array{0.0}, 1);
    marks.update(std::array{0.6}, 1);
    marks.update(std::array{0.0}, 1);
    EXPECT_EQ(marks.levels()[0], 0.6);
}

TEST(PeakMarks, hold_from_the_last_picture_in_which_a_bar_reached_them) {
    PeakMarks marks;
    for (int picture = 0; picture < 5; ++picture)
        marks.update(std::vector{0.5}, 2);
    for (int picture = 0; picture < 2; ++picture) {
        marks.update(std::vector{0.1}, 2);
        EXPECT_EQ(marks.levels()[0], 0.5);
    }
    marks.update(std::vector{0.1}, 2);
    EXPECT_LT(marks.levels()[0], 0.5);
}

TEST(PeakMarks, are_as_many_as_the_bars_and_none_after_a_reset) {
    PeakMarks marks;
    marks.update(std::array{0.5, 0.5, 0.5}, hold);
    marks.update(std::array{0.1}, hold);
    ASSERT_EQ(marks.levels().size(), 1u);
    EXPECT_EQ(marks.levels()[0], 0.5);
    marks.reset();
    EXPECT_TRUE(marks.levels().empty());
}

} // namespace
} // namespace corvina
