#include "sources/DecWAV.h"

#include "runtime/RuntimeError.h"
#include "support/FaultyFiles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;

// Bytes of data from which on a read is cut exactly at the end.
constexpr std::int32_t largeData = 58'375'640;

class DecWAVTest : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }

    std::int32_t open(const Bytes& bytes) {
        return wav_.OpenSource(folder_.write(std::to_wstring(++files_) + L".wav", bytes));
    }

    // 16-bit stereo at 44100 Hz.
    void openPlain(std::size_t dataBytes) {
        ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), noise(dataBytes))), 0);
    }

    // Another chunk follows the data.
    void openWithMoreBehind(std::size_t dataBytes) {
        ASSERT_EQ(open(WavBytes()
                           .format(pcm(44100, 2, 16))
                           .chunk("data", noise(dataBytes))
                           .chunk("LIST", noise(2000, 9))
                           .bytes()),
                  0);
    }

    // A file of that many bytes of data (zeros that take no room) and more bytes behind them.
    void openSparse(std::int32_t dataBytes, std::int32_t behind) {
        const Bytes head = WavBytes()
                               .format(pcm(44100, 2, 16))
                               .chunk("data", {}, static_cast<std::uint32_t>(dataBytes))
                               .bytes();
        const std::wstring path = folder_.write(L"sparse.wav", head);
        const HANDLE file =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ::SetFilePointer(file, dataBytes + behind, nullptr, FILE_END);
        ASSERT_TRUE(::SetEndOfFile(file));
        ::CloseHandle(file);
        ASSERT_EQ(wav_.OpenSource(path), 0);
    }

    std::int32_t read(std::int32_t bytes, std::int32_t& got) {
        buffer_.assign(static_cast<std::size_t>(bytes), 0xEE);
        return wav_.Read(buffer_.data(), bytes, got);
    }

    std::int32_t seek(std::int32_t value, std::int32_t mode) { return wav_.SeekTo(value, mode); }

    // Leaves that many bytes of the data unread.
    void leave(std::int32_t bytes, std::int32_t dataBytes) {
        Bytes skipped(static_cast<std::size_t>(dataBytes - bytes));
        std::int32_t got = 0;
        ASSERT_EQ(wav_.Read(skipped.data(), dataBytes - bytes, got), 0);
        ASSERT_EQ(got, dataBytes - bytes);
    }

    // Where the next byte comes from, counted from the first data byte.
    std::int32_t dataPosition(const Bytes& data) {
        std::int32_t got = 0;
        read(8, got);
        const auto found = std::search(data.begin(), data.end(), buffer_.begin(), buffer_.end());
        return static_cast<std::int32_t>(found - data.begin());
    }

    template <typename Body>
    static std::int32_t errorOf(Body&& body) {
        try {
            body();
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    }

    TempFolder folder_;
    DecWAV wav_{faultyFileApi, faultyMmioApi};
    Bytes buffer_;
    int files_ = 0;
};

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

TEST_F(DecWAVTest, a_format_chunk_of_14_bytes_is_refused) {
    EXPECT_EQ(open(WavBytes().format(pcm(8000, 1, 8), 14).chunk("data", noise(10)).bytes()), 1);
    EXPECT_EQ(open(WavBytes().format(pcm(8000, 1, 8), 0).chunk("data", noise(10)).bytes()), 1);
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

TEST_F(DecWAVTest, files_that_cannot_be_opened_answer_1) {
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

// ---- reading near the end

TEST_F(DecWAVTest, the_doubled_limit_serves_a_small_overrun_whole) {
    openWithMoreBehind(3000);
    leave(1000, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0); // 1500 <= 2 * 1000
    EXPECT_EQ(got, 1500);
    EXPECT_EQ(Bytes(buffer_.begin() + 1000, buffer_.begin() + 1004), (Bytes{'L', 'I', 'S', 'T'}));
    EXPECT_EQ(read(1500, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, the_doubled_limit_delivers_what_the_file_still_has) {
    openPlain(3000);
    leave(1000, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0);
    EXPECT_EQ(got, 1000);
}

TEST_F(DecWAVTest, the_doubled_limit_cuts_an_overrun_of_more_than_half) {
    openWithMoreBehind(3000);
    leave(700, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 5);
    EXPECT_EQ(got, 700);
}

TEST_F(DecWAVTest, an_overrun_of_exactly_half_is_served_whole) {
    openPlain(3000);
    leave(750, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0);
}

TEST_F(DecWAVTest, a_large_file_is_cut_exactly_at_its_end) {
    openSparse(largeData, 4000);
    ASSERT_EQ(seek(330, 1), 0); // 58,212,000 of 58,375,640
    std::int32_t got = 0;
    Bytes skipped(163'640 - 1000);
    ASSERT_EQ(wav_.Read(skipped.data(), 163'640 - 1000, got), 0);
    EXPECT_EQ(read(1001, got), 5);
    EXPECT_EQ(got, 1000);
    EXPECT_EQ(read(1001, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, a_large_file_read_exactly_to_its_end_is_not_ended_yet) {
    openSparse(largeData, 4000);
    ASSERT_EQ(seek(330, 1), 0);
    std::int32_t got = 0;
    Bytes rest(163'640);
    EXPECT_EQ(wav_.Read(rest.data(), 163'640, got), 0);
    EXPECT_EQ(got, 163'640);
    EXPECT_TRUE(wav_.EndOfStream());
    EXPECT_EQ(read(1, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, one_byte_less_than_large_has_the_doubled_limit) {
    openSparse(largeData - 1, 4000);
    ASSERT_EQ(seek(330, 1), 0);
    std::int32_t got = 0;
    Bytes skipped(163'639 - 1000);
    ASSERT_EQ(wav_.Read(skipped.data(), 163'639 - 1000, got), 0);
    EXPECT_EQ(read(2000, got), 0);
    EXPECT_EQ(got, 2000);
}

TEST_F(DecWAVTest, empty_data_is_at_its_end_at_once) {
    openPlain(0);
    EXPECT_TRUE(wav_.EndOfStream());
    std::int32_t got = 77;
    EXPECT_EQ(read(100, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, a_failed_read_counts_minus_one) {
    openPlain(1000);
    fileFaults.arm("ReadFile", 1);
    std::int32_t got = 0;
    EXPECT_EQ(read(100, got), 0);
    EXPECT_EQ(got, -1);
    EXPECT_EQ(read(100, got), 0);
    EXPECT_EQ(got, 100);
}

// ---- seeking

TEST_F(DecWAVTest, seeking_to_0_goes_to_the_first_byte_in_every_mode) {
    const Bytes data = noise(500'000);
    ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), data)), 0);
    for (const std::int32_t mode : {0, 1, 2, -1}) {
        std::int32_t got = 0;
        read(1001, got);
        EXPECT_EQ(seek(0, mode), 0);
        EXPECT_EQ(dataPosition(data), 0) << mode;
    }
}

TEST_F(DecWAVTest, half_of_an_odd_length_is_aligned_down_to_a_block) {
    const Bytes data = noise(1'000'002);
    ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), data)), 0);
    EXPECT_EQ(seek(50, 0), 0);
    EXPECT_EQ(dataPosition(data), 500'000);
}

TEST_F(DecWAVTest, seeking_to_100_percent_leaves_nothing_to_read) {
    openPlain(4000);
    EXPECT_EQ(seek(100, 0), 0);
    EXPECT_TRUE(wav_.EndOfStream());
    std::int32_t got = 77;
    EXPECT_EQ(read(100, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, percentages_out_of_range_answer_3_and_stay) {
    const Bytes data = noise(4000);
    ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), data)), 0);
    EXPECT_EQ(seek(50, 0), 0);
    for (const std::int32_t value : {101, -1, 2147483647, -2147483647 - 1})
        EXPECT_EQ(seek(value, 0), 3);
    EXPECT_EQ(dataPosition(data), 2000);
}

TEST_F(DecWAVTest, seconds_up_to_the_length_are_accepted) {
    const Bytes data = noise(8000 * 3);
    ASSERT_EQ(open(plainWav(pcm(8000, 1, 8), data)), 0);
    EXPECT_EQ(seek(2, 1), 0);
    EXPECT_EQ(wav_.Position(), 2000);
    EXPECT_EQ(dataPosition(data), 16000);
    EXPECT_EQ(seek(3, 1), 0);
    EXPECT_EQ(seek(4, 1), 3);
    EXPECT_EQ(seek(-1, 1), 3);
    EXPECT_EQ(seek(2147483647, 1), 3);
    EXPECT_EQ(wav_.Position(), 3000);
}

TEST_F(DecWAVTest, a_second_of_a_compressed_file_is_aligned_down_to_its_block) {
    WAVEFORMATEX record = pcm(8000, 1, 4);
    record.wFormatTag = WAVE_FORMAT_ADPCM;
    record.nBlockAlign = 256;
    record.nAvgBytesPerSec = 4096 + 100;
    const Bytes data = noise(20'000);
    ASSERT_EQ(open(plainWav(record, data)), 0);
    EXPECT_EQ(seek(1, 1), 0);
    EXPECT_EQ(dataPosition(data), 4096);
}

TEST_F(DecWAVTest, an_unknown_mode_goes_to_the_first_byte) {
    const Bytes data = noise(4000);
    ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), data)), 0);
    EXPECT_EQ(seek(50, 0), 0);
    EXPECT_EQ(seek(50, 7), 0);
    EXPECT_EQ(dataPosition(data), 0);
}

TEST_F(DecWAVTest, seeking_does_not_write_its_mode) {
    openPlain(4000);
    for (std::int32_t mode : {0, 1, 9}) {
        const std::int32_t before = mode;
        wav_.SeekTo(0, mode);
        EXPECT_EQ(mode, before);
    }
}

// ---- run-time errors

TEST_F(DecWAVTest, an_average_rate_of_0_makes_times_fail) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nAvgBytesPerSec = 0;
    ASSERT_EQ(open(plainWav(record, noise(100))), 0);
    EXPECT_EQ(errorOf([&] { (void)wav_.Duration(); }), 11);
    EXPECT_EQ(errorOf([&] { (void)seek(0, 1); }), 11);
    EXPECT_EQ(errorOf([&] { (void)wav_.Position(); }), 6); // 0 / 0
    EXPECT_EQ(wav_.Bitrate(), 0);
    EXPECT_EQ(seek(50, 0), 0);
}

TEST_F(DecWAVTest, a_block_align_of_0_makes_a_seek_fail_unless_it_goes_to_0) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nBlockAlign = 0;
    ASSERT_EQ(open(plainWav(record, noise(100))), 0);
    EXPECT_EQ(errorOf([&] { (void)seek(50, 0); }), 11);
    EXPECT_EQ(errorOf([&] { (void)seek(5, 7); }), 11);
    EXPECT_EQ(seek(0, 0), 0);
}

TEST_F(DecWAVTest, a_bit_rate_beyond_32_bits_overflows) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nAvgBytesPerSec = 0x10000000;
    ASSERT_EQ(open(plainWav(record, noise(100))), 0);
    EXPECT_EQ(errorOf([&] { (void)wav_.Bitrate(); }), 6);
}

TEST_F(DecWAVTest, positions_beyond_32_bits_overflow) {
    ASSERT_EQ(
        open(WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(100), 0x7FFFFFFFu).bytes()), 0);
    std::int32_t got = 0;
    EXPECT_EQ(errorOf([&] { (void)wav_.EndOfStream(); }), 6);
    EXPECT_EQ(errorOf([&] { (void)read(10, got); }), 6);
    EXPECT_EQ(errorOf([&] { (void)seek(100, 0); }), 6);
}

TEST_F(DecWAVTest, a_read_count_beyond_32_bits_overflows) {
    openPlain(100);
    Bytes buffer(16);
    std::int32_t got = 0;
    EXPECT_EQ(errorOf([&] { (void)wav_.Read(buffer.data(), 2147483647, got); }), 6);
}

} // namespace
} // namespace corvina
