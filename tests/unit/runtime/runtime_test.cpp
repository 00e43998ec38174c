#include "runtime/BitReversal.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"
#include "support/ErrorNumber.h"

#include <cmath>
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

TEST(BitReversal, the_lowest_bits_come_back_in_reverse_order) {
    EXPECT_EQ(reverseBits(0b0000000001U, 10), 0b1000000000U);
    EXPECT_EQ(reverseBits(0b1101U, 4), 0b1011U);
    EXPECT_EQ(reverseBits(0x80000000U, 32), 1U);
    EXPECT_EQ(reverseBits(7, 0), 0U);
}

TEST(BitReversal, the_shared_table_holds_each_index_with_its_ten_bits_reversed) {
    fillBitReversalTable();
    ASSERT_EQ(bitReversalTable().size(), 1024U);
    for (std::int32_t i = 0; i < 1024; ++i) {
        std::int32_t reversed = 0;
        for (std::int32_t k = 0, rest = i; k < 10; ++k, rest /= 2)
            reversed = 2 * reversed + rest % 2;
        EXPECT_EQ(bitReversalTable()[static_cast<std::size_t>(i)], reversed);
    }
}

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

TEST(RuntimeErrors, each_has_its_number_and_its_text) {
    struct Expected {
        void (*raise)();
        std::int32_t number;
        const wchar_t* text;
    };
    const Expected all[] = {
        {&throwInvalidCall, 5, L"Invalid procedure call or argument"},
        {&throwOverflow, 6, L"Overflow"},
        {&throwSubscript, 9, L"Subscript out of range"},
        {&throwDivisionByZero, 11, L"Division by zero"},
        {[] { throwCannotLoadLibrary(L"a.dll"); }, 53, L"File not found: a.dll"},
        {&throwObjectNotSet, 91, L"Object variable or With block variable not set"},
    };
    for (const Expected& expected : all) {
        try {
            expected.raise();
            ADD_FAILURE() << expected.number << " was not raised";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), expected.number);
            EXPECT_EQ(error.text(), expected.text);
        }
    }
}

} // namespace
} // namespace corvina
