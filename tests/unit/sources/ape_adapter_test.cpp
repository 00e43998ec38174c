// Calls of the functions of the project's own MACDll.dll, also those that no source makes.

#include "ApeFunctions.h"

#include <utility>
#include <vector>

namespace corvina::test {
namespace {

TEST_F(ApeFunctions, each_is_exported_under_its_plain_and_its_decorated_name) {
    for (const auto& [plain, decorated] :
         {std::pair{"c_APEDecompress_Create", "_c_APEDecompress_Create@8"},
          std::pair{"c_APEDecompress_CreateW", "_c_APEDecompress_CreateW@8"},
          std::pair{"c_APEDecompress_GetInfo", "_c_APEDecompress_GetInfo@16"},
          std::pair{"c_APEDecompress_GetData", "_c_APEDecompress_GetData@16"},
          std::pair{"c_APEDecompress_Seek", "_c_APEDecompress_Seek@8"},
          std::pair{"c_APEDecompress_Destroy", "_c_APEDecompress_Destroy@4"}})
        EXPECT_EQ(apeFunction<void*>(plain), apeFunction<void*>(decorated)) << plain;
}

TEST_F(ApeFunctions, a_good_file_has_a_handle_and_no_error) {
    std::int32_t error = 77;
    const std::int32_t decoder = create(path.c_str(), &error);
    EXPECT_NE(decoder, 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(destroy(decoder), 0);
}

TEST_F(ApeFunctions, no_path_a_missing_file_and_another_format_have_no_handle_but_an_error) {
    const std::string other = toAnsi(mediaFile(L"tune.ogg")).text;
    for (const char* bad : {static_cast<const char*>(nullptr), "", "no such file.ape",
                            "http://localhost/a.ape", other.c_str()}) {
        std::int32_t error = 0;
        EXPECT_EQ(create(bad, &error), 0);
        EXPECT_NE(error, 0);
        EXPECT_EQ(create(bad, nullptr), 0);
    }
}

TEST_F(ApeFunctions, a_wide_path_opens_names_that_no_code_page_has) {
    TempFolder folder;
    const std::wstring name =
        folder.write(L"\u6771\u4EAC \u0416.ape", fileBytes(mediaFile(L"tune.ape")));
    std::int32_t error = 77;
    const std::int32_t decoder = createWide(name.c_str(), &error);
    EXPECT_NE(decoder, 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(getInfo(decoder, 1016, 0, 0), 132'300);
    EXPECT_EQ(destroy(decoder), 0);
}

TEST_F(ApeFunctions, no_wide_path_and_a_missing_file_have_no_handle_but_an_error) {
    for (const wchar_t* bad : {static_cast<const wchar_t*>(nullptr), L"", L"no such file.ape"}) {
        std::int32_t error = 0;
        EXPECT_EQ(createWide(bad, &error), 0);
        EXPECT_NE(error, 0);
    }
}

TEST_F(ApeFunctions, every_field_that_players_ask_for_has_its_value) {
    const std::int32_t decoder = open();
    EXPECT_EQ(getInfo(decoder, 1003, 0, 0), 44100);
    EXPECT_EQ(getInfo(decoder, 1004, 0, 0), 16);
    EXPECT_EQ(getInfo(decoder, 1006, 0, 0), 2);
    EXPECT_EQ(getInfo(decoder, 1007, 0, 0), 4);
    EXPECT_EQ(getInfo(decoder, 1016, 0, 0), 132'300);
    EXPECT_EQ(getInfo(decoder, 1017, 0, 0), 3000);
    EXPECT_NEAR(getInfo(decoder, 1018, 0, 0), 251, 1); // 94,360 bytes in 3 s
    EXPECT_EQ(getInfo(decoder, 2001, 0, 0), 0);
    destroy(decoder);
}

TEST_F(ApeFunctions, any_other_field_is_0) {
    const std::int32_t decoder = open();
    for (const std::int32_t field : {0, -1, 999, 1002, 1005, 2000, 2002, least, most})
        EXPECT_EQ(getInfo(decoder, field, most, least), 0) << field;
    destroy(decoder);
}

TEST_F(ApeFunctions, a_handle_that_is_none_is_refused_everywhere) {
    const std::int32_t closed = open();
    destroy(closed);
    for (const std::int32_t bad : {0, closed, -1, least, most}) {
        char buffer[4];
        std::int32_t got = 77;
        EXPECT_EQ(getInfo(bad, 1003, 0, 0), 0);
        EXPECT_NE(getData(bad, buffer, 1, &got), 0);
        EXPECT_EQ(got, 0);
        EXPECT_NE(seek(bad, 0), 0);
        EXPECT_NE(destroy(bad), 0);
    }
}

TEST_F(ApeFunctions, impossible_reads_are_refused_with_no_blocks) {
    const std::int32_t decoder = open();
    char buffer[4];
    for (const std::int32_t blocks : {-1, least}) {
        std::int32_t got = 77;
        EXPECT_NE(getData(decoder, buffer, blocks, &got), 0);
        EXPECT_EQ(got, 0);
    }
    std::int32_t got = 77;
    EXPECT_NE(getData(decoder, nullptr, 1, &got), 0);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(getData(decoder, nullptr, 0, &got), 0);
    EXPECT_EQ(getData(decoder, buffer, 1, nullptr), 0);
    destroy(decoder);
}

TEST_F(ApeFunctions, a_huge_count_reads_to_the_end_of_the_file) {
    const std::int32_t decoder = open();
    std::vector<char> buffer(132'300 * 4);
    std::int32_t got = 0;
    EXPECT_EQ(getData(decoder, buffer.data(), most, &got), 0);
    EXPECT_EQ(got, 132'300);
    destroy(decoder);
}

TEST_F(ApeFunctions, seeks_reach_from_the_first_block_to_the_end) {
    const std::int32_t decoder = open();
    EXPECT_EQ(seek(decoder, 0), 0);
    EXPECT_EQ(seek(decoder, 132'300), 0);
    EXPECT_EQ(getInfo(decoder, 2001, 0, 0), 3000);
    for (const std::int32_t block : {132'301, most, -1, least})
        EXPECT_NE(seek(decoder, block), 0);
    destroy(decoder);
}

TEST_F(ApeFunctions, two_decoders_do_not_disturb_each_other) {
    const std::int32_t first = open();
    const std::int32_t second = open();
    EXPECT_NE(first, second);
    seek(first, 44100);
    EXPECT_EQ(getInfo(first, 2001, 0, 0), 1000);
    EXPECT_EQ(getInfo(second, 2001, 0, 0), 0);
    destroy(first);
    EXPECT_EQ(getInfo(second, 1003, 0, 0), 44100);
    destroy(second);
}

} // namespace
} // namespace corvina::test
