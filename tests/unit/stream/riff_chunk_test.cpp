#include "stream/RiffChunk.h"

#include "support/FaultyFiles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <utility>

namespace corvina {
namespace {

using namespace test;

class RiffChunkTest : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }
    void TearDown() override { EXPECT_EQ(openFiles, 0); }

    RiffChunk find(const Bytes& bytes, const char* name) {
        return findWaveChunk(folder_.write(L"a.wav", bytes), name, faultyMmioApi);
    }

    static void expectNone(const RiffChunk& chunk) {
        EXPECT_EQ(chunk.offset, 0);
        EXPECT_EQ(chunk.size, 0);
    }

    TempFolder folder_;
};

TEST_F(RiffChunkTest, a_chunk_is_found_with_its_offset_and_size) {
    const Bytes file = plainWav(pcm(44100, 2, 16), noise(1000));
    const RiffChunk format = find(file, "fmt ");
    EXPECT_EQ(format.offset, 20);
    EXPECT_EQ(format.size, 16);
    const RiffChunk data = find(file, "data");
    EXPECT_EQ(data.offset, 44);
    EXPECT_EQ(data.size, 1000);
}

TEST_F(RiffChunkTest, chunks_before_it_are_stepped_over_odd_ones_with_their_padding) {
    const Bytes file = WavBytes()
                           .chunk("LIST", noise(33))
                           .chunk("junk", {})
                           .format(pcm(8000, 1, 8))
                           .chunk("data", noise(10))
                           .bytes();
    EXPECT_EQ(find(file, "fmt ").offset, 12 + 8 + 34 + 8 + 8);
    EXPECT_EQ(find(file, "data").offset, 12 + 8 + 34 + 8 + 8 + 16 + 8);
}

TEST_F(RiffChunkTest, a_short_name_is_filled_with_blanks) {
    EXPECT_EQ(find(plainWav(pcm(8000, 1, 8), noise(10)), "fmt").offset, 20);
}

TEST_F(RiffChunkTest, a_chunk_that_is_not_there_is_at_0_with_size_0) {
    expectNone(find(plainWav(pcm(8000, 1, 8), noise(10)), "fact"));
}

TEST_F(RiffChunkTest, another_form_than_wave_has_no_chunks) {
    expectNone(
        find(WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(10)).bytes("AVI "), "data"));
}

TEST_F(RiffChunkTest, a_size_that_leads_back_to_the_same_chunk_ends_the_search) {
    // 0xFFFFFFF8 bytes on from a chunk's data is its own header.
    for (const std::uint32_t size :
         {0xFFFFFFF8u, 0xFFFFFFF7u, 0xFFFFFFF0u, 0x80000000u, 0x7FFFFFF8u})
        expectNone(
            find(WavBytes().chunk("LIST", noise(8), size).format(pcm(8000, 1, 8)).bytes(), "fmt "));
}

TEST_F(RiffChunkTest, a_form_that_leads_back_to_itself_ends_the_search) {
    expectNone(find(WavBytes().format(pcm(8000, 1, 8)).bytes("AVI ", 0xFFFFFFF8u), "fmt "));
}

TEST_F(RiffChunkTest, a_long_row_of_empty_chunks_ends_the_search) {
    Bytes file = WavBytes().bytes();
    file.resize(2'000'000);
    expectNone(find(file, "data"));
}

TEST_F(RiffChunkTest, a_size_is_handed_on_as_declared) {
    const Bytes file =
        WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(10), 0x7FFFFFFFu).bytes();
    EXPECT_EQ(find(file, "data").size, 0x7FFFFFFF);
}

TEST_F(RiffChunkTest, a_file_cut_anywhere_before_the_chunk_has_none) {
    const Bytes whole = plainWav(pcm(8000, 1, 8), noise(10));
    for (std::size_t length = 0; length < 44; ++length)
        expectNone(find(Bytes(whole.begin(), whole.begin() + static_cast<int>(length)), "data"));
}

TEST_F(RiffChunkTest, garbage_has_no_chunks) {
    for (std::uint32_t seed = 1; seed <= 50; ++seed)
        expectNone(find(noise(3000, seed), "data"));
}

TEST_F(RiffChunkTest, names_that_no_file_can_have_are_safe) {
    expectNone(findWaveChunk(L"", "data"));
    expectNone(findWaveChunk(L"\x4E00.wav", "data"));
    expectNone(findWaveChunk(std::wstring(L"a\0b", 3), "data"));
    for (const std::size_t length : {127u, 128u, 259u, 260u, 261u, 32768u})
        expectNone(findWaveChunk(std::wstring(length, L'n'), "data"));
}

TEST_F(RiffChunkTest, a_name_without_a_folder_is_of_the_current_folder_not_of_the_programs) {
    const std::wstring name = L"beside-or-current.wav";
    wchar_t program[MAX_PATH];
    ASSERT_NE(::GetModuleFileNameW(nullptr, program, MAX_PATH), 0u);
    const std::wstring folder(program, std::wcsrchr(program, L'\\') + 1);
    ASSERT_TRUE(::CopyFileW(folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(10))).c_str(),
                            (folder + name).c_str(), FALSE));
    folder_.write(name, plainWav(pcm(8000, 1, 8), noise(20)));
    wchar_t home[MAX_PATH];
    ::GetCurrentDirectoryW(MAX_PATH, home);
    ASSERT_TRUE(::SetCurrentDirectoryW(folder_.path().c_str()));
    EXPECT_EQ(findWaveChunk(name, "data").size, 20);
    ::SetCurrentDirectoryW(home);
    ::DeleteFileW((folder + name).c_str());
}

// As the platform's documentation has it: a name has at most 127 characters.
HMMIO WINAPI openOnlyShort(LPSTR name, LPMMIOINFO info, DWORD flags) {
    if (name && std::strlen(name) >= 128)
        return nullptr;
    return faultyMmioApi.open(name, info, flags);
}

TEST_F(RiffChunkTest, names_of_any_length_that_a_file_can_have_are_found) {
    MmioApi onlyShort = faultyMmioApi;
    onlyShort.open = &openOnlyShort;
    // A folder whose files have names of 120 characters and more, as full names.
    const std::wstring deep = folder_.path() + L"\\" + std::wstring(60, L'd');
    ASSERT_TRUE(::CreateDirectoryW(deep.c_str(), nullptr));
    wchar_t home[MAX_PATH];
    ::GetCurrentDirectoryW(MAX_PATH, home);
    ASSERT_TRUE(::SetCurrentDirectoryW(deep.c_str()));
    for (const std::size_t whole : {126u, 127u, 128u, 129u, 200u, 250u}) {
        SCOPED_TRACE(whole);
        const std::wstring name = std::wstring(whole - deep.size() - 5, L'n') + L".wav";
        const std::wstring path = deep + L"\\" + name;
        ASSERT_EQ(path.size(), whole);
        ASSERT_TRUE(
            ::CopyFileW(folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(20))).c_str(),
                        path.c_str(), TRUE));
        for (const MmioApi* mmio : {&faultyMmioApi, &std::as_const(onlyShort)}) {
            EXPECT_EQ(findWaveChunk(name, "data", *mmio).size, 20) << "by its relative name";
            EXPECT_EQ(findWaveChunk(path, "data", *mmio).size, 20);
            EXPECT_EQ(findWaveChunk(L".\\" + name, "data", *mmio).size, 20);
        }
        EXPECT_EQ(openFiles, 0);
        EXPECT_TRUE(::DeleteFileW(path.c_str())) << "nothing is left open";
    }
    ::SetCurrentDirectoryW(home);
    EXPECT_TRUE(::RemoveDirectoryW(deep.c_str()));
}

TEST_F(RiffChunkTest, a_plus_sign_in_a_name_is_a_character_like_any_other) {
    const std::wstring path = folder_.write(L"a.b+wav", plainWav(pcm(8000, 1, 8), noise(10)));
    EXPECT_EQ(findWaveChunk(path, "data").offset, 44);
}

TEST_F(RiffChunkTest, any_failure_of_the_platform_finds_nothing_and_leaves_nothing_open) {
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(10)));
    forEachFaultAndPair(
        fileFaults,
        [&path] {
            const RiffChunk chunk = findWaveChunk(path, "data", faultyMmioApi);
            EXPECT_EQ(openFiles, 0);
            // Only a failed close goes unnoticed.
            if (fileFaults.struck() > 0 && fileFaults.function() != "mmioClose")
                expectNone(chunk);
            else
                EXPECT_EQ(chunk.offset, 44);
        },
        4);
}

} // namespace
} // namespace corvina
