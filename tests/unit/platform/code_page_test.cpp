#include "platform/CodePage.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using namespace std::string_literals;

constexpr unsigned western = 1252;
constexpr unsigned japanese = 932;

// Wine converts to UTF-8 whatever it is given; Windows refuses all but this.
int WINAPI strictAsWindows(UINT codePage, DWORD flags, LPCWCH text, int length, LPSTR result,
                           int size, LPCCH replacement, LPBOOL replaced) {
    const bool refused = (flags & ~DWORD{WC_ERR_INVALID_CHARS}) != 0 || replacement || replaced;
    if (codePage == CP_UTF8 && refused)
        return 0;
    return ::WideCharToMultiByte(codePage, flags, text, length, result, size, replacement,
                                 replaced);
}

class Utf8 : public testing::Test {
protected:
    const TextApi texts{&strictAsWindows};
    const CodePage page{CP_UTF8, texts};
};

TEST(CodePage, a_character_of_the_code_page_is_encoded_and_any_other_is_lossy) {
    const CodePage page(western);
    EXPECT_EQ(page.encode(L"\u00E9.wav").text, "\xE9.wav");
    EXPECT_FALSE(page.encode(L"\u00E9.wav").lossy);
    EXPECT_TRUE(page.encode(L"\u4E00.wav").lossy);
    EXPECT_TRUE(page.encode(L"\u0100.wav").lossy) << "and no similar one takes its place";
}

TEST(CodePage, a_character_of_code_0_is_lossy_in_every_code_page) {
    for (const unsigned number : {western, japanese, unsigned{CP_UTF8}})
        EXPECT_TRUE(CodePage(number).encode(L"a\0b"s).lossy) << number;
}

TEST(CodePage, an_empty_text_is_not_lossy) {
    for (const unsigned number : {western, japanese, unsigned{CP_UTF8}}) {
        EXPECT_FALSE(CodePage(number).encode(L"").lossy) << number;
        EXPECT_EQ(CodePage(number).encode(L"").text, "") << number;
        EXPECT_EQ(CodePage(number).decode(""), L"") << number;
        EXPECT_EQ(CodePage(number).decodeBytes(""), L"") << number;
    }
}

TEST(CodePage, each_byte_is_a_character_also_where_the_code_page_joins_two) {
    EXPECT_EQ(CodePage(western).decodeBytes("\xE9\xC3\xA9"), L"\u00E9\u00C3\u00A9");
    EXPECT_EQ(CodePage(japanese).decode("\x88\xEA"), L"\u4E00");
    EXPECT_EQ(CodePage(japanese).decodeBytes("\x88\xEA").size(), 2u);
}

TEST_F(Utf8, every_character_is_encoded) {
    EXPECT_EQ(page.encode(L"a.wav").text, "a.wav");
    EXPECT_FALSE(page.encode(L"a.wav").lossy);
    EXPECT_EQ(page.encode(L"\u4E00\U0001F3B5").text, "\xE4\xB8\x80\xF0\x9F\x8E\xB5");
    EXPECT_FALSE(page.encode(L"\u4E00\U0001F3B5").lossy);
}

TEST_F(Utf8, half_a_surrogate_pair_is_lossy) {
    EXPECT_TRUE(page.encode(L"a\xD83C.wav").lossy);
    EXPECT_TRUE(page.encode(L"a\xDFB5.wav").lossy);
}

TEST_F(Utf8, bytes_are_decoded_together) {
    EXPECT_EQ(page.decode("a\xC3\xA9"), L"a\u00E9");
    EXPECT_EQ(page.decodeBytes("a\xC3\xA9"), L"a\u00E9");
}

TEST_F(Utf8, a_byte_that_begins_no_character_does_not_take_the_rest_away) {
    EXPECT_EQ(page.decodeBytes("caf\xE9 noir"), L"caf\uFFFD noir");
}

} // namespace
} // namespace corvina::test
