#include "stream/FileAccess.h"

#include "stream/FileListing.h"
#include "support/FaultyFiles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;

class FileAccessTest : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }
    void TearDown() override { EXPECT_EQ(openFiles, 0); }

    TempFolder folder_;
    FileAccess access_{faultyFileApi};
};

TEST_F(FileAccessTest, an_opened_record_knows_its_path_and_reads_from_the_start) {
    const std::wstring path = folder_.write(L"a.bin", {1, 2, 3, 4, 5});
    FileRecord file = access_.openForReading(path);
    EXPECT_EQ(file.path, path);
    Bytes bytes(3);
    EXPECT_EQ(access_.read(file, bytes.data(), 3), 3);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
    EXPECT_EQ(access_.position(file), 3);
}

TEST_F(FileAccessTest, a_record_of_a_missing_file_is_closed_and_keeps_the_path) {
    const FileRecord file = access_.openForReading(folder_.path() + L"\\none");
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.path, folder_.path() + L"\\none");
}

TEST_F(FileAccessTest, positions_count_from_the_beginning_or_from_the_current_one) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(100)));
    EXPECT_EQ(access_.setPosition(file, 40, MoveMethod::fromBeginning), 40);
    EXPECT_EQ(access_.setPosition(file, 7, MoveMethod::fromCurrent), 47);
    EXPECT_EQ(access_.setPosition(file, -10, MoveMethod::fromCurrent), 37);
    EXPECT_EQ(access_.position(file), 37);
}

TEST_F(FileAccessTest, a_read_at_the_end_delivers_what_is_left_and_then_nothing) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(10)));
    Bytes bytes(16);
    EXPECT_EQ(access_.read(file, bytes.data(), 16), 10);
    EXPECT_EQ(access_.read(file, bytes.data(), 16), 0);
}

TEST_F(FileAccessTest, a_closed_record_reads_nothing_without_calling_the_platform) {
    Bytes bytes(4);
    EXPECT_EQ(access_.read(FileRecord{}, bytes.data(), 4), 0);
    EXPECT_EQ(fileFaults.calls("ReadFile"), 0);
}

TEST_F(FileAccessTest, a_failed_read_is_minus_one) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(10)));
    Bytes bytes(4);
    fileFaults.arm("ReadFile", 1);
    EXPECT_EQ(access_.read(file, bytes.data(), 4), -1);
    EXPECT_EQ(access_.read(file, bytes.data(), 4), 4);
}

TEST_F(FileAccessTest, a_negative_count_is_refused_instead_of_read_as_four_gigabytes) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(10)));
    Bytes bytes(4);
    EXPECT_EQ(access_.read(file, bytes.data(), -1), -1);
    EXPECT_EQ(access_.read(file, bytes.data(), std::numeric_limits<std::int32_t>::min()), -1);
}

TEST_F(FileAccessTest, a_null_destination_is_a_failed_read) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(10)));
    EXPECT_EQ(access_.read(file, nullptr, 4), -1);
}

TEST_F(FileAccessTest, closing_clears_the_record_and_twice_is_harmless) {
    FileRecord file = access_.openForReading(folder_.write(L"a.bin", noise(10)));
    file.close();
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.handle.get(), INVALID_HANDLE_VALUE);
    EXPECT_TRUE(file.path.empty());
    file.close();
    EXPECT_EQ(fileFaults.calls("CloseHandle"), 1);
}

TEST_F(FileAccessTest, a_record_closes_its_file_at_its_end_once) {
    const std::wstring path = folder_.write(L"a.bin", noise(10));
    {
        FileRecord first = access_.openForReading(path);
        FileRecord second = access_.openForReading(path);
        EXPECT_EQ(openFiles, 2);
        second = std::move(first);
        EXPECT_EQ(openFiles, 1);
        EXPECT_FALSE(first.isOpen());
        EXPECT_TRUE(second.isOpen());
    }
    EXPECT_EQ(openFiles, 0);
    EXPECT_EQ(fileFaults.calls("CloseHandle"), 2);
}

TEST_F(FileAccessTest, a_file_exists_as_long_as_it_can_be_opened_for_reading) {
    const std::wstring path = folder_.write(L"a.bin", noise(10));
    EXPECT_TRUE(access_.exists(path));
    EXPECT_FALSE(access_.exists(path + L"x"));
    EXPECT_FALSE(access_.exists(folder_.path()));
    fileFaults.arm("CreateFile", 1);
    EXPECT_FALSE(access_.exists(path));
}

TEST_F(FileAccessTest, a_character_outside_the_code_page_opens_no_other_file) {
    const std::wstring path = folder_.write(L"a.bin", noise(10));
    std::wstring lossy = path;
    lossy[lossy.size() - 5] = L'\x4E00';
    EXPECT_FALSE(access_.exists(lossy));
    EXPECT_FALSE(access_.openForReading(lossy).isOpen());
}

TEST_F(FileAccessTest, a_name_that_the_code_page_lacks_opens_its_own_file) {
    folder_.write(L"_.bin", noise(9));
    const std::wstring path = folder_.write(L"\x4E00\x0416.bin", noise(10));
    EXPECT_TRUE(access_.exists(path));
    const FileRecord file = access_.openForReading(path);
    Bytes bytes(16);
    EXPECT_EQ(access_.read(file, bytes.data(), 16), 10);
}

TEST_F(FileAccessTest, names_that_the_code_page_has_are_opened_in_it) {
    const std::wstring path = folder_.write(L"a.bin", noise(10));
    EXPECT_TRUE(access_.exists(path));
    EXPECT_EQ(fileFaults.calls("CreateFile"), 1);
    EXPECT_EQ(fileFaults.calls("CreateFileWide"), 0);
}

// A host may have switched the functions for ANSI names to the code page of the console.
TEST_F(FileAccessTest, names_open_their_own_files_whichever_code_page_the_host_has_set_for_them) {
    const std::wstring path = folder_.write(L"Gr\u00FC\u00DFe.wav", {1});
    const std::wstring plain = folder_.write(L"plain.wav", {2});
    ::SetFileApisToOEM();
    EXPECT_TRUE(access_.exists(path));
    EXPECT_TRUE(access_.exists(plain));
    EXPECT_TRUE(isFileListed(path));
    ::SetFileApisToANSI();
    EXPECT_TRUE(access_.exists(path));
    EXPECT_EQ(fileFaults.calls("CreateFileWide"), 1);
}

TEST_F(FileAccessTest, a_path_beyond_260_characters_opens) {
    const std::wstring verbatim = L"\\\\?\\";
    const std::wstring deep = folder_.path() + L"\\" + std::wstring(200, L'd');
    ASSERT_TRUE(::CreateDirectoryW((verbatim + deep).c_str(), nullptr));
    const std::wstring path = deep + L"\\" + std::wstring(100, L'n') + L".bin";
    ::CloseHandle(::CreateFileW((verbatim + path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                0, nullptr));
    EXPECT_GT(path.size(), std::size_t{MAX_PATH});
    EXPECT_TRUE(access_.exists(path));
    EXPECT_TRUE(access_.exists(verbatim + path));
    EXPECT_FALSE(access_.exists(path + L"x"));
    ::DeleteFileW((verbatim + path).c_str());
    ::RemoveDirectoryW((verbatim + deep).c_str());
}

TEST_F(FileAccessTest, the_name_of_a_device_opens_nothing) {
    for (const wchar_t* name : {L"AUX", L"aux.ogg", L"C:\\music\\Com1.ogg", L"nul.wav"})
        EXPECT_FALSE(access_.openForReading(name).isOpen());
    EXPECT_EQ(fileFaults.calls("CreateFile") + fileFaults.calls("CreateFileWide"), 0);
}

TEST_F(FileAccessTest, a_character_of_code_0_does_not_cut_the_name) {
    const std::wstring path = folder_.write(L"a.bin", noise(10));
    EXPECT_FALSE(access_.exists(path + std::wstring(1, L'\0') + L"b"));
    EXPECT_FALSE(access_.exists(path + std::wstring(1, L'\0')));
}

TEST_F(FileAccessTest, names_of_any_length_are_safe) {
    for (const std::size_t length : {0u, 1u, 259u, 260u, 261u, 32768u})
        EXPECT_FALSE(access_.exists(std::wstring(length, L'n'))) << length;
}

TEST_F(FileAccessTest, the_longest_path_of_the_platform_opens) {
    const std::wstring name(259 - folder_.path().size() - 1, L'n');
    EXPECT_TRUE(access_.exists(folder_.write(name, noise(10))));
}

} // namespace
} // namespace corvina
