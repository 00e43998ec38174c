#include "stream/FileListing.h"

#include "support/FaultyFiles.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;

class FileListing : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }
    void TearDown() override { EXPECT_EQ(openFiles, 0); }

    [[nodiscard]] static bool listed(const std::wstring& name) {
        return isFileListed(name, faultyFileApi);
    }

    TempFolder folder_;
};

TEST_F(FileListing, a_file_is_there_in_any_case_and_a_missing_one_is_not) {
    const std::wstring path = folder_.write(L"song.wav", {1});
    EXPECT_TRUE(listed(path));
    EXPECT_TRUE(listed(folder_.path() + L"\\SONG.WAV"));
    EXPECT_FALSE(listed(folder_.path() + L"\\other.wav"));
}

TEST_F(FileListing, a_directory_is_no_file) {
    EXPECT_FALSE(listed(folder_.path()));
    EXPECT_FALSE(listed(folder_.path() + L"\\"));
    EXPECT_FALSE(listed(L"C:\\"));
}

TEST_F(FileListing, wildcards_match_as_in_any_listing) {
    EXPECT_FALSE(listed(folder_.path() + L"\\*"));
    const std::wstring path = folder_.write(L"song.wav", {1});
    EXPECT_TRUE(listed(folder_.path() + L"\\*"));
    EXPECT_TRUE(listed(folder_.path() + L"\\s?ng.w*"));
    EXPECT_FALSE(listed(folder_.path() + L"\\*.mp3"));
}

TEST_F(FileListing, a_hidden_file_is_there) {
    const std::wstring path = folder_.write(L"song.wav", {1});
    ASSERT_TRUE(::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_TRUE(listed(path));
}

TEST_F(FileListing, a_file_that_somebody_locks_is_there) {
    const std::wstring path = folder_.write(L"song.wav", {1});
    const HANDLE lock =
        ::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(listed(path));
    ::CloseHandle(lock);
}

TEST_F(FileListing, an_empty_name_finds_nothing) {
    EXPECT_FALSE(listed(L""));
}

TEST_F(FileListing, a_character_outside_the_code_page_is_no_wildcard) {
    const std::wstring path = folder_.write(L"a.wav", {1});
    std::wstring lossy = path;
    lossy[lossy.size() - 5] = L'\x4E00';
    EXPECT_FALSE(listed(lossy));
}

TEST_F(FileListing, a_name_that_the_code_page_lacks_finds_its_file) {
    const std::wstring path = folder_.write(L"\x4E00.wav", {1});
    EXPECT_TRUE(listed(path));
    EXPECT_FALSE(listed(path + L"x"));
    EXPECT_TRUE(listed(folder_.path() + L"\\\x4E00*"));
}

TEST_F(FileListing, the_name_of_a_device_finds_nothing) {
    EXPECT_FALSE(listed(L"NUL"));
    EXPECT_FALSE(listed(folder_.path() + L"\\aux.wav"));
}

TEST_F(FileListing, a_character_of_code_0_does_not_cut_the_name) {
    const std::wstring path = folder_.write(L"a.wav", {1});
    EXPECT_FALSE(listed(path + std::wstring(1, L'\0') + L".mp3"));
}

TEST_F(FileListing, names_of_any_length_are_safe) {
    for (const std::size_t length : {259u, 260u, 261u, 32768u})
        EXPECT_FALSE(listed(std::wstring(length, L'n'))) << length;
}

DWORD errorModeOfListing = 0;

HANDLE WINAPI listNoting(LPCSTR name, LPWIN32_FIND_DATAA entry) {
    errorModeOfListing = ::GetThreadErrorMode();
    return ::FindFirstFileA(name, entry);
}

TEST_F(FileListing, a_drive_without_a_disk_shows_no_box_and_the_host_keeps_its_boxes) {
    FileApi api;
    api.findFirstFile = &listNoting;
    const DWORD before = ::GetThreadErrorMode();
    EXPECT_FALSE(isFileListed(folder_.path() + L"\\a.wav", api));
    EXPECT_EQ(errorModeOfListing, before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    EXPECT_EQ(::GetThreadErrorMode(), before);
}

TEST_F(FileListing, no_failure_leaves_a_listing_open) {
    folder_.write(L"a.wav", {1});
    forEachFault(fileFaults, [this] {
        (void)listed(folder_.path() + L"\\*");
        EXPECT_EQ(openFiles, 0);
    });
    EXPECT_TRUE(listed(folder_.path() + L"\\*"));
}

} // namespace
} // namespace corvina
