#include "stream/FileName.h"

#include "platform/AnsiText.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace corvina {
namespace {

TEST(FileName, an_ordinary_name_goes_by_the_code_page) {
    const FileName name = fileName(L"C:\\music\\song.ogg");
    EXPECT_TRUE(name.fitsAnsi);
    EXPECT_EQ(name.ansi, "C:\\music\\song.ogg");
    EXPECT_FALSE(name.impossible);
}

TEST(FileName, a_name_that_the_code_page_lacks_goes_by_its_characters) {
    const FileName name = fileName(L"C:\\music\\\x4E00.ogg");
    EXPECT_FALSE(name.fitsAnsi);
    EXPECT_EQ(name.wide, L"C:\\music\\\x4E00.ogg");
}

TEST(FileName, a_long_name_goes_as_its_full_path_that_is_taken_literally) {
    const std::wstring rest(300, L'n');
    EXPECT_EQ(fileName(L"C:\\a\\.\\" + rest).wide, L"\\\\?\\C:\\a\\" + rest);
    EXPECT_EQ(fileName(L"\\\\server\\share\\" + rest).wide, L"\\\\?\\UNC\\server\\share\\" + rest);
    EXPECT_EQ(fileName(L"\\\\?\\C:\\" + rest).wide, L"\\\\?\\C:\\" + rest);
    EXPECT_FALSE(fileName(L"C:\\" + rest).fitsAnsi);
}

TEST(FileName, a_short_name_in_a_deep_current_folder_is_a_long_one) {
    const std::wstring name(259, L'n');
    EXPECT_FALSE(fileName(name).fitsAnsi);
}

TEST(FileName, no_file_has_an_empty_name_one_with_code_0_or_a_devices) {
    for (const std::wstring& path :
         {std::wstring(), std::wstring(L"a\0b", 3), std::wstring(L"AUX.ogg")}) {
        EXPECT_TRUE(fileName(path).impossible);
        EXPECT_FALSE(fileName(path).fitsAnsi);
    }
}

TEST(DeviceName, devices_are_known_in_every_folder_and_with_every_extension) {
    for (const wchar_t* path :
         {L"AUX", L"aux.ogg", L"C:\\music\\AUX.ogg", L"music/nul.wav", L"Con.a.b", L"PRN .mp3",
          L"COM1", L"com9.au", L"lpt5.x", L"COM\u00B9.ogg", L"CONIN$", L"C:aux", L"aux:",
          L"\\\\server\\share\\aux.ogg"})
        EXPECT_TRUE(isDeviceName(path)) << toAnsi(path).text;
}

TEST(DeviceName, other_names_are_files) {
    for (const wchar_t* path :
         {L"", L"AUXILIARY.ogg", L"com.ogg", L"COM0.ogg", L"COM10.ogg", L"lpt.ogg", L"my aux.ogg",
          L"aux\\song.ogg", L"\\\\?\\C:\\aux.ogg", L"\\\\.\\D:", L"a.aux"})
        EXPECT_FALSE(isDeviceName(path)) << toAnsi(path).text;
}

} // namespace
} // namespace corvina
