// How many frames of sound a WAV file holds, whatever its header says of its rate.

#include "player/WaveLength.h"
#include "sources/DecWAV.h"
#include "support/ScriptedSource.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class WaveLength : public ::testing::Test {
protected:
    std::optional<std::int64_t> count(const Bytes& file) {
        const std::wstring path = folder.write(L"a.wav", file);
        DecWAV source;
        EXPECT_EQ(source.OpenSource(path), 0);
        return countFrames(path, source);
    }
    // Blocks of 256 bytes and 505 frames, as writers of IMA ADPCM make them.
    static WavBytes ima(WORD framesInBlock = 505) {
        WAVEFORMATEX format = pcm(44100, 1, 4);
        format.wFormatTag = WAVE_FORMAT_IMA_ADPCM;
        format.nBlockAlign = 256;
        format.nAvgBytesPerSec = 1; // wrong
        format.cbSize = 2;
        return WavBytes().format(format, sizeof format,
                                 {static_cast<std::uint8_t>(framesInBlock),
                                  static_cast<std::uint8_t>(framesInBlock >> 8)});
    }
    static Bytes number(std::uint32_t value) {
        Bytes bytes(4);
        std::memcpy(bytes.data(), &value, 4);
        return bytes;
    }

    TempFolder folder;
};

TEST_F(WaveLength, of_PCM_is_the_data_in_frames) {
    WAVEFORMATEX format = pcm(44100, 2, 16);
    format.nAvgBytesPerSec = 7;
    EXPECT_EQ(count(plainWav(format, Bytes(4003))), 1000);
}

TEST_F(WaveLength, of_a_file_that_was_cut_off_is_what_is_there) {
    EXPECT_EQ(count(WavBytes().format(pcm(8000, 1, 8)).chunk("data", Bytes(100), 5000).bytes()),
              100);
}

TEST_F(WaveLength, leaves_out_what_follows_the_data) {
    EXPECT_EQ(count(WavBytes()
                        .format(pcm(8000, 1, 8))
                        .chunk("data", Bytes(100))
                        .chunk("LIST", Bytes(400))
                        .bytes()),
              100);
}

TEST_F(WaveLength, of_compressed_sound_is_counted_in_blocks) {
    EXPECT_EQ(count(ima().chunk("data", Bytes(256 * 3)).bytes()), 3 * 505);
}

TEST_F(WaveLength, of_compressed_sound_is_what_its_writer_counted) {
    EXPECT_EQ(count(ima().chunk("fact", number(1200)).chunk("data", Bytes(256 * 3)).bytes()), 1200);
}

TEST_F(WaveLength, does_not_believe_a_writer_that_counted_nothing_or_too_much) {
    for (const std::uint32_t counted : {0u, 1516u, 0xFFFFFFFFu})
        EXPECT_EQ(count(ima().chunk("fact", number(counted)).chunk("data", Bytes(256 * 3)).bytes()),
                  3 * 505);
}

TEST_F(WaveLength, is_unknown_where_blocks_cannot_be_counted) {
    EXPECT_EQ(count(ima(0).chunk("data", Bytes(256)).bytes()), std::nullopt);
    ScriptedSource other;
    EXPECT_EQ(countFrames(folder.write(L"b.wav", plainWav(pcm(8000, 1, 8), Bytes(9))), other),
              std::nullopt)
        << "not the source of WAV files";
}

TEST_F(WaveLength, of_PCM_is_not_what_a_writer_counted) {
    EXPECT_EQ(count(WavBytes()
                        .format(pcm(8000, 1, 8))
                        .chunk("fact", number(10))
                        .chunk("data", Bytes(100))
                        .bytes()),
              100);
}

TEST_F(WaveLength, of_compressed_sound_may_be_a_single_frame) {
    EXPECT_EQ(count(ima().chunk("fact", number(1)).chunk("data", Bytes(256 * 3)).bytes()), 1);
}

TEST_F(WaveLength, of_a_file_without_sound_is_0) {
    EXPECT_EQ(count(WavBytes().format(pcm(8000, 1, 8)).chunk("data", {}).bytes()), 0);
    EXPECT_EQ(count(WavBytes().format(pcm(8000, 1, 8)).chunk("data", {}, 5000).bytes()), 0)
        << "cut off behind the header of its data";
}

TEST_F(WaveLength, is_unknown_of_a_file_without_data) {
    DecWAV source;
    ASSERT_EQ(source.OpenSource(folder.write(L"a.wav", plainWav(pcm(8000, 1, 8), Bytes(9)))), 0);
    const std::wstring other =
        folder.write(L"b.wav", WavBytes().format(pcm(8000, 1, 8)).chunk("LIST", Bytes(4)).bytes());
    EXPECT_EQ(countFrames(other, source), std::nullopt);
}

TEST_F(WaveLength, of_a_file_of_more_than_4_GB_is_what_its_header_says) {
    const Bytes content = WavBytes().format(pcm(8000, 1, 8)).chunk("data", Bytes(9), 5000).bytes();
    DecWAV source;
    ASSERT_EQ(source.OpenSource(folder.write(L"a.wav", content)), 0);
    const std::wstring large = folder.write(L"large.wav", content);
    const HANDLE file =
        ::CreateFileW(large.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size;
    size.QuadPart = (std::int64_t{1} << 32) + 100;
    // Nothing of the rest is written, so that it takes no place on the disk.
    const bool made = ::SetFilePointerEx(file, size, nullptr, FILE_BEGIN) && ::SetEndOfFile(file);
    ::CloseHandle(file);
    if (!made)
        GTEST_SKIP() << "the disk takes no file of that size";
    EXPECT_EQ(countFrames(large, source), 5000);
}

} // namespace
} // namespace corvina::test
