#include "runtime/Text.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvina {
namespace {

TEST(Text, a_part_is_found_in_any_case_and_an_empty_part_always) {
    EXPECT_TRUE(containsIgnoringCase(L"wma;mp3;wmv", L"MP3"));
    EXPECT_TRUE(containsIgnoringCase(L"wav", L"wa"));
    EXPECT_TRUE(containsIgnoringCase(L"ape", L""));
    EXPECT_FALSE(containsIgnoringCase(L"ape", L"apes"));
}

TEST(Text, join_and_split_are_inverse) {
    const std::vector<std::wstring> parts = {L"au", L"snd", L"aiff"};
    EXPECT_EQ(join(parts, L";"), L"au;snd;aiff");
    EXPECT_EQ(split(L"au;snd;aiff", L';'), parts);
    EXPECT_TRUE(split(L"", L';').empty());
}

TEST(Text, letters_change_their_case_and_nothing_else_does) {
    EXPECT_EQ(upperCase(L"aZ1. "), L"AZ1. ");
    EXPECT_EQ(lowerCase(L"aZ1. "), L"az1. ");
}

TEST(Text, what_is_behind_a_character_of_code_0_is_cut_off) {
    EXPECT_EQ(upToNul(std::wstring(L"ab\0cd", 5)), L"ab");
    EXPECT_EQ(upToNul(L"ab"), L"ab");
    EXPECT_EQ(upToNul(std::wstring(2, L'\0')), L"");
}

TEST(Text, trim_removes_blanks_at_both_ends_only) {
    EXPECT_EQ(trim(L"  a b "), L"a b");
    EXPECT_EQ(trim(L"   "), L"");
}

} // namespace
} // namespace corvina
