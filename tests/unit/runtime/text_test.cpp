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

TEST(Text, trim_removes_blanks_at_both_ends_only) {
    EXPECT_EQ(trim(L"  a b "), L"a b");
    EXPECT_EQ(trim(L"   "), L"");
}

} // namespace
} // namespace corvina
