#include "FileLists.h"

#include "Unicode.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::app {
namespace {

using Files = std::vector<std::wstring>;
constexpr const wchar_t* patterns = L"*.wav;*.mp3;*.ogg";

Files filesOf(const std::vector<Track>& tracks) {
    Files files;
    for (const Track& track : tracks) {
        EXPECT_TRUE(track.isWholeFile()) << toUtf8(track.file);
        files.push_back(track.file);
    }
    return files;
}

Files filesOfList(std::wstring_view extension, std::string_view bytes, std::wstring_view folder) {
    return filesOf(tracksOfList(extension, bytes, folder));
}

TEST(FileLists, m3u_names_one_file_a_line_beside_its_remarks) {
    EXPECT_EQ(filesOfList(L"m3u",
                          "#EXTM3U\r\n#EXTINF:1,One\r\none.mp3\r\n\r\n  sub/two three.ogg \n"
                          "D:\\else\\four.wav\n\\\\server\\share\\five.wav\n\\root.wav\n"
                          "http://host/stream.mp3\n",
                          L"C:\\music\\"),
              (Files{L"C:\\music\\one.mp3", L"C:\\music\\sub\\two three.ogg", L"D:\\else\\four.wav",
                     L"\\\\server\\share\\five.wav", L"C:\\root.wav"}));
}

TEST(FileLists, are_read_in_utf_8_and_utf_16_and_the_systems_code_page) {
    const Files expected{L"C:\\\x00FC.mp3"};
    EXPECT_EQ(filesOfList(L"m3u8", "\xC3\xBC.mp3", L"C:\\"), expected);
    EXPECT_EQ(filesOfList(L"M3U", "\xEF\xBB\xBF\xC3\xBC.mp3", L"C:\\"), expected);
    const char utf16[] = "\xFF\xFE\xFC\0.\0m\0p\0003\0";
    EXPECT_EQ(filesOfList(L"m3u", std::string_view(utf16, sizeof utf16 - 1), L"C:\\"), expected);
    EXPECT_EQ(filesOfList(L"m3u", "\xFC.mp3", L"C:\\").size(), 1u);
}

TEST(FileLists, pls_is_ordered_by_its_numbers) {
    EXPECT_EQ(filesOfList(L"pls",
                          "[playlist]\nNumberOfEntries=3\nFile2=b.mp3\nTitle2=B\nFile10=c.mp3\n"
                          "file1=a.mp3\nFile3=\nVersion=2\n",
                          L"C:\\"),
              (Files{L"C:\\a.mp3", L"C:\\b.mp3", L"C:\\c.mp3"}));
}

TEST(FileLists, cue_names_its_files_with_and_without_quotes) {
    EXPECT_EQ(filesOfList(L"cue",
                          "TITLE \"Album\"\nFILE \"the album.wav\" WAVE\n  TRACK 01 AUDIO\n"
                          "    INDEX 01 00:00:00\nFILE two.mp3 MP3\n",
                          L"C:\\"),
              (Files{L"C:\\the album.wav", L"C:\\two.mp3"}));
}

TEST(FileLists, nonsense_names_nothing) {
    for (const wchar_t* kind : {L"m3u", L"pls", L"cue"}) {
        EXPECT_TRUE(filesOfList(kind, "", L"C:\\").empty());
        EXPECT_TRUE(filesOfList(kind, "\r\n\n  \n", L"C:\\").empty());
        (void)filesOfList(kind, "FILE\nFILE \nFILE \"\nFILE \"x\nFile=\n=\nFile1", L"");
        (void)filesOfList(kind, "\xFF\xFE", L"");
    }
}

TEST(FileLists, a_folder_brings_the_audio_files_in_and_below_it_in_order) {
    test::TempFolder folder;
    const std::wstring b = folder.write(L"b.wav", {1});
    const std::wstring a = folder.write(L"A.mp3", {1});
    (void)folder.write(L"cover.png", {1});
    const std::wstring root = b.substr(0, b.find_last_of(L'\\'));
    ASSERT_TRUE(CreateDirectoryW((root + L"\\sub").c_str(), nullptr));
    const std::wstring below = folder.write(L"sub\\c.ogg", {1});
    EXPECT_EQ(filesOf(expandPaths({root}, patterns)), (Files{a, b, below}));
    EXPECT_EQ(filesOf(expandPaths({root + L"\\"}, patterns)), (Files{a, b, below}));
    DeleteFileW(below.c_str());
    RemoveDirectoryW((root + L"\\sub").c_str());
}

TEST(FileLists, a_list_brings_its_files_and_everything_else_stays) {
    test::TempFolder folder;
    const std::wstring list = folder.write(L"list.m3u", {'x', '.', 'w', 'a', 'v'});
    const std::wstring root = list.substr(0, list.find_last_of(L'\\') + 1);
    EXPECT_EQ(
        filesOf(expandPaths({L"one.wav", list, L"missing.m3u", L"dots.in\\folder"}, patterns)),
        (Files{L"one.wav", root + L"x.wav", L"missing.m3u", L"dots.in\\folder"}));
}

TEST(FileLists, a_folder_brings_only_what_the_patterns_name) {
    test::TempFolder folder;
    const std::wstring file = folder.write(L"a.wav", {1});
    (void)folder.write(L"b.mp3", {1});
    const std::wstring root = file.substr(0, file.find_last_of(L'\\'));
    EXPECT_EQ(filesOf(expandPaths({root}, L"*.wav")), Files{file});
    EXPECT_TRUE(expandPaths({root}, L"").empty());
}

} // namespace
} // namespace corvina::app
