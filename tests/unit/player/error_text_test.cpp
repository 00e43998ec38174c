// The texts of the control's own error numbers.

#include "player/ErrorText.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(ErrorText, the_controls_own_numbers_have_texts) {
    EXPECT_EQ(errorText(-101), L"Error opening file");
    EXPECT_EQ(errorText(-102), L"Not audio file");
    EXPECT_EQ(errorText(-201),
              L"Control already playing, use the PlayStop function to stop playing.");
    EXPECT_EQ(errorText(-202),
              L"Control already recording, use the RecordStop function to stop recording.");
}

TEST(ErrorText, any_other_number_gives_an_empty_text) {
    for (const std::int32_t number : {5, 0, 1, -1, 11, -100, -203, INT32_MAX, INT32_MIN})
        EXPECT_EQ(errorText(number), L"") << number;
}

} // namespace
} // namespace corvina::test
