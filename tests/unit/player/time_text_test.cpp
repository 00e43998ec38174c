// Times as a player shows them.

#include "player/TimeText.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(TimeText, hours_are_not_padded_but_minutes_and_seconds_are) {
    EXPECT_EQ(secondsAsTimeText(0), L"0:00:00");
    EXPECT_EQ(secondsAsTimeText(59), L"0:00:59");
    EXPECT_EQ(secondsAsTimeText(60), L"0:01:00");
    EXPECT_EQ(secondsAsTimeText(3599), L"0:59:59");
    EXPECT_EQ(secondsAsTimeText(3600), L"1:00:00");
    EXPECT_EQ(secondsAsTimeText(3725), L"1:02:05");
    EXPECT_EQ(secondsAsTimeText(36000), L"10:00:00");
    EXPECT_EQ(secondsAsTimeText(360000), L"100:00:00");
}

TEST(TimeText, negative_and_extreme_numbers_have_a_text) {
    EXPECT_EQ(secondsAsTimeText(-5), L"0:00:-05");
    EXPECT_EQ(secondsAsTimeText(-3725), L"-1:-02:-05");
    EXPECT_EQ(secondsAsTimeText(INT32_MAX), L"596523:14:07");
    EXPECT_EQ(secondsAsTimeText(INT32_MIN), L"-596523:-14:-08");
}

} // namespace
} // namespace corvina::test
