#include "WavFixture.h"

#include <new>

namespace corvina::test {
namespace {

HANDLE WINAPI outOfMemoryToOpen(LPCSTR name, DWORD access, DWORD share,
                                LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                HANDLE pattern) {
    const HANDLE file =
        faultyFileApi.createFile(name, access, share, security, disposition, flags, pattern);
    if (file == INVALID_HANDLE_VALUE)
        throw std::bad_alloc();
    return file;
}

TEST_F(DecWAVTest, a_new_source_is_closed_and_describes_itself) {
    EXPECT_EQ(&wav_.Info(), static_cast<cSoundInf*>(&wav_));
    EXPECT_EQ(wav_.Extensions(), std::vector<std::wstring>{L"wav"});
    EXPECT_TRUE(wav_.Seekable());
    EXPECT_FALSE(wav_.Force16Bit());
    EXPECT_EQ(wav_.WFXPointer(), nullptr);
}

TEST_F(DecWAVTest, the_tags_are_one_empty_collection) {
    StrmTags* const tags = wav_.Tags();
    ASSERT_NE(tags, nullptr);
    EXPECT_EQ(tags->TagCount(), 0);
    openPlain(100);
    EXPECT_EQ(wav_.Tags(), tags);
    EXPECT_EQ(tags->TagCount(), 0);
}

TEST_F(DecWAVTest, the_format_numbers_are_those_of_the_record) {
    ASSERT_EQ(open(plainWav(pcm(22050, 1, 8), noise(44100))), 0);
    EXPECT_EQ(wav_.SampleRate(), 22050);
    EXPECT_EQ(wav_.Channels(), 1);
    EXPECT_EQ(wav_.BitsPerSample(), 8);
    EXPECT_EQ(wav_.Bitrate(), 22050 * 8);
    EXPECT_EQ(wav_.Duration(), 2000);
    EXPECT_EQ(wav_.Position(), 0);
}

TEST_F(DecWAVTest, a_stored_width_of_0_counts_as_16_bits) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.wBitsPerSample = 0;
    ASSERT_EQ(open(plainWav(record, noise(10))), 0);
    EXPECT_EQ(wav_.BitsPerSample(), 16);
}

TEST_F(DecWAVTest, durations_are_rounded_to_the_nearest_millisecond_ties_to_even) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nAvgBytesPerSec = 2000;
    ASSERT_EQ(open(plainWav(record, noise(1))), 0);
    EXPECT_EQ(wav_.Duration(), 0); // 0.5
    ASSERT_EQ(open(plainWav(record, noise(3))), 0);
    EXPECT_EQ(wav_.Duration(), 2); // 1.5
    ASSERT_EQ(open(plainWav(record, noise(5))), 0);
    EXPECT_EQ(wav_.Duration(), 2); // 2.5
}

TEST_F(DecWAVTest, the_data_is_delivered_as_stored) {
    const Bytes data = noise(10000);
    ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), data)), 0);
    Bytes heard;
    std::int32_t result = 0;
    do {
        std::int32_t got = 0;
        result = read(1024, got);
        heard.insert(heard.end(), buffer_.begin(), buffer_.begin() + got);
    } while (result == 0 && !wav_.EndOfStream());
    EXPECT_EQ(heard, data);
}

TEST_F(DecWAVTest, a_data_chunk_before_the_format_chunk_opens_normally) {
    const Bytes data = noise(100);
    ASSERT_EQ(open(WavBytes().chunk("data", data).format(pcm(8000, 1, 8)).bytes()), 0);
    EXPECT_EQ(wav_.SampleRate(), 8000);
    EXPECT_EQ(dataPosition(data), 0);
}

TEST_F(DecWAVTest, a_format_chunk_of_16_bytes_is_exposed_with_zeros_behind_it) {
    openPlain(100);
    const WAVEFORMATEX* const record = wav_.WFXPointer();
    const WAVEFORMATEX expected = pcm(44100, 2, 16);
    EXPECT_EQ(std::memcmp(record, &expected, 16), 0);
    EXPECT_EQ(record->cbSize, 0);
}

TEST_F(DecWAVTest, a_format_chunk_of_less_than_16_bytes_is_refused) {
    for (const std::size_t size : {0u, 14u, 15u})
        EXPECT_EQ(open(WavBytes().format(pcm(8000, 1, 8), size).chunk("data", noise(9)).bytes()), 1)
            << size;
}

TEST_F(DecWAVTest, the_format_chunk_is_exposed_whole_extra_bytes_included) {
    WAVEFORMATEX record = pcm(8000, 1, 4);
    record.wFormatTag = WAVE_FORMAT_ADPCM;
    record.cbSize = 32;
    const Bytes extra = noise(32);
    ASSERT_EQ(open(WavBytes().format(record, 18, extra).chunk("data", noise(10)).bytes()), 0);
    const auto* const stored = reinterpret_cast<const std::uint8_t*>(wav_.WFXPointer());
    EXPECT_EQ(std::memcmp(stored, &record, sizeof record), 0);
    EXPECT_EQ(Bytes(stored + 18, stored + 50), extra);
}

TEST_F(DecWAVTest, extra_bytes_that_are_counted_but_not_stored_read_as_zeros) {
    WAVEFORMATEX record = pcm(8000, 1, 4);
    record.wFormatTag = WAVE_FORMAT_ADPCM;
    record.cbSize = 0xFFFF;
    ASSERT_EQ(open(WavBytes().format(record, 18).chunk("data", noise(10)).bytes()), 0);
    const auto* const stored = reinterpret_cast<const std::uint8_t*>(wav_.WFXPointer());
    EXPECT_EQ(Bytes(stored + 18, stored + 18 + 0xFFFF), Bytes(0xFFFF));
}

TEST_F(DecWAVTest, the_record_stays_where_it_is_while_the_source_is_used) {
    openPlain(100'000);
    const WAVEFORMATEX* const record = wav_.WFXPointer();
    std::int32_t got = 0;
    read(5000, got);
    seek(50, 0);
    wav_.CloseSource();
    EXPECT_EQ(wav_.WFXPointer(), record);
    EXPECT_EQ(record->nSamplesPerSec, 44100u);
}

TEST_F(DecWAVTest, files_that_cannot_be_opened_return_1) {
    EXPECT_EQ(wav_.OpenSource(folder_.path() + L"\\none.wav"), 1);
    EXPECT_EQ(wav_.OpenSource(L""), 1);
    EXPECT_EQ(wav_.OpenSource(folder_.path()), 1);
    EXPECT_EQ(open({}), 1);
    EXPECT_EQ(open(noise(5000)), 1);
    EXPECT_EQ(open(WavBytes().format(pcm(8000, 1, 8)).bytes()), 1);
    EXPECT_EQ(open(WavBytes().chunk("data", noise(100)).bytes()), 1);
    EXPECT_EQ(open(WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(9)).bytes("AVI ")), 1);
}

TEST_F(DecWAVTest, a_failed_open_leaves_the_description_as_it_was) {
    openPlain(100);
    const WAVEFORMATEX* const record = wav_.WFXPointer();
    EXPECT_EQ(wav_.OpenSource(folder_.path() + L"\\none.wav"), 1);
    EXPECT_EQ(wav_.WFXPointer(), record);
    EXPECT_EQ(wav_.SampleRate(), 44100);
    std::int32_t got = 0;
    EXPECT_EQ(read(50, got), 0);
    EXPECT_EQ(got, 50);
}

TEST_F(DecWAVTest, an_open_that_fails_on_the_way_closes_its_file) {
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(100)));
    for (const char* const function : {"ReadFile", "SetFilePointer"}) {
        fileFaults.arm(function, 1);
        EXPECT_EQ(wav_.OpenSource(path), 1) << function;
        fileFaults.disarm();
        EXPECT_EQ(openFiles, 0);
        std::int32_t got = 7;
        EXPECT_EQ(read(10, got), 1);
    }
}

TEST_F(DecWAVTest, a_file_in_which_the_system_finds_both_chunks_is_not_searched_again) {
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(100)));
    fileFaults.arm("", 0);
    EXPECT_EQ(wav_.OpenSource(path), 0);
    EXPECT_EQ(fileFaults.calls("CreateFile"), 2) << "to ask whether it exists, and to play it";
}

TEST_F(DecWAVTest, a_second_open_does_not_close_the_first_file_first) {
    openPlain(100);
    ASSERT_EQ(openFiles, 1);
    const std::wstring second = folder_.write(L"b.wav", plainWav(pcm(8000, 1, 8), noise(100)));
    EXPECT_EQ(wav_.OpenSource(second), 0);
    EXPECT_EQ(openFiles, 2);
    EXPECT_EQ(wav_.SampleRate(), 8000);
    wav_.CloseSource();
    EXPECT_EQ(openFiles, 0);
}

TEST_F(DecWAVTest, a_second_open_without_memory_leaves_the_first_file_to_be_closed_once) {
    FileApi files = faultyFileApi;
    files.createFile = &outOfMemoryToOpen;
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(100)));
    DecWAV source(files, faultyMmioApi);
    ASSERT_EQ(source.OpenSource(path), 0);
    fileFaults.arm("CreateFile", 2); // the first only asks whether the file exists
    EXPECT_THROW((void)source.OpenSource(path), std::bad_alloc);
    fileFaults.disarm();
    source.CloseSource();
    EXPECT_EQ(fileFaults.calls("CloseHandle"), 1);
    EXPECT_EQ(openFiles, 0);
}

TEST_F(DecWAVTest, a_destroyed_source_closes_its_file) {
    {
        DecWAV source(faultyFileApi, faultyMmioApi);
        ASSERT_EQ(source.OpenSource(folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(9)))),
                  0);
        EXPECT_EQ(openFiles, 1);
    }
    EXPECT_EQ(openFiles, 0);
}

TEST_F(DecWAVTest, a_closed_source_reads_nothing_and_does_not_seek) {
    openPlain(100);
    EXPECT_EQ(wav_.CloseSource(), 0);
    EXPECT_EQ(wav_.CloseSource(), 0);
    std::int32_t got = 77;
    EXPECT_EQ(read(10, got), 1);
    EXPECT_EQ(got, 77);
    EXPECT_EQ(buffer_, Bytes(10, 0xEE));
    EXPECT_EQ(seek(50, 0), 0);
    EXPECT_EQ(seek(-5, 0), 0);
    EXPECT_TRUE(wav_.Seekable());
}

} // namespace
} // namespace corvina::test
