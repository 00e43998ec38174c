// Seeking in the WAV source, and the run-time errors of its arithmetic.

#include "WavFixture.h"

namespace corvina::test {
namespace {

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

TEST_F(DecWAVTest, half_of_an_odd_length_is_rounded_to_the_nearest_byte_ties_to_even) {
    const std::pair<std::size_t, std::int32_t> halves[] = {{3, 2}, {5, 2}, {7, 4}};
    for (const auto& [length, half] : halves) {
        ASSERT_EQ(open(plainWav(pcm(1, 1, 8), noise(length))), 0);
        EXPECT_EQ(seek(50, 0), 0);
        EXPECT_EQ(wav_.Position(), half * 1000) << length;
    }
}

TEST_F(DecWAVTest, seeking_to_100_percent_leaves_nothing_to_read) {
    openPlain(4000);
    EXPECT_EQ(seek(100, 0), 0);
    EXPECT_TRUE(wav_.EndOfStream());
    std::int32_t got = 77;
    EXPECT_EQ(read(100, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, percentages_out_of_range_return_3_and_stay) {
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

// A record of IMA ADPCM with that average rate, where 256 bytes are 505 frames.
Bytes adpcmFile(DWORD bytesPerSecond, const Bytes& data) {
    WAVEFORMATEX record = pcm(22050, 1, 4);
    record.wFormatTag = WAVE_FORMAT_IMA_ADPCM;
    record.nBlockAlign = 256;
    record.nAvgBytesPerSec = bytesPerSecond;
    record.cbSize = 2;
    return WavBytes().format(record, 18, {505 % 256, 505 / 256}).chunk("data", data).bytes();
}

TEST_F(DecWAVTest, a_second_of_compressed_sound_has_a_lead_in_to_its_very_frame) {
    const Bytes data = noise(51'200);
    ASSERT_EQ(open(adpcmFile(11'178, data)), 0);
    EXPECT_FALSE(wav_.hasLeadIn());
    EXPECT_EQ(seek(3, 1), 0);
    EXPECT_TRUE(wav_.hasLeadIn());
    const LeadIn leadIn = wav_.goToLeadIn();
    EXPECT_EQ(leadIn.frames, 22050 * 3 % 505);
    EXPECT_FALSE(wav_.hasLeadIn());
    EXPECT_EQ(dataPosition(data), 22050 * 3 / 505 * 256);
    EXPECT_EQ(wav_.goToLeadIn().frames, 0);
}

TEST_F(DecWAVTest, whoever_reads_on_without_it_is_where_the_record_says) {
    const Bytes data = noise(51'200);
    ASSERT_EQ(open(adpcmFile(11'178, data)), 0);
    EXPECT_EQ(seek(3, 1), 0);
    EXPECT_EQ(dataPosition(data), 11'178 * 3 / 256 * 256);
    EXPECT_FALSE(wav_.hasLeadIn());
    EXPECT_EQ(seek(50, 0), 0);
    EXPECT_TRUE(wav_.hasLeadIn());
    EXPECT_EQ(wav_.goToLeadIn().frames, 0);
    EXPECT_EQ(dataPosition(data), 25'600);
    EXPECT_EQ(seek(1, 1), 0);
    wav_.CloseSource();
    EXPECT_FALSE(wav_.hasLeadIn());
}

TEST_F(DecWAVTest, an_average_rate_that_the_blocks_deny_is_not_used) {
    const Bytes data = noise(51'200); // 200 blocks of 505 frames
    for (const DWORD recorded : {0u, 5'000u, 16'000u}) {
        ASSERT_EQ(open(adpcmFile(recorded, data)), 0);
        EXPECT_EQ(wav_.Duration(), 4580) << recorded;
        EXPECT_EQ(wav_.Bitrate(), static_cast<std::int32_t>(recorded) * 8);
        EXPECT_EQ(seek(5, 1), 3);
        EXPECT_EQ(seek(4, 1), 0);
        EXPECT_NEAR(wav_.Position(), 4000, 23);
        EXPECT_EQ(dataPosition(data), 22050 * 4 / 505 * 256);
    }
}

TEST_F(DecWAVTest, mpeg_sound_without_an_average_rate_has_the_length_of_its_count) {
    WAVEFORMATEX record = pcm(44100, 2, 16);
    record.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
    record.nAvgBytesPerSec = 0;
    ASSERT_EQ(open(WavBytes()
                       .format(record)
                       .chunk("fact", {0x88, 0x58, 1, 0}) // 88200
                       .chunk("data", noise(32'000))
                       .bytes()),
              0);
    EXPECT_EQ(wav_.Duration(), 2000);
    EXPECT_EQ(wav_.Position(), 0);
    EXPECT_EQ(seek(1, 1), 0);
    EXPECT_EQ(wav_.Position(), 1000);
    // No frame is found, so the place is where the rate says.
    EXPECT_EQ(wav_.goToLeadIn().frames, 0);
    EXPECT_EQ(wav_.Position(), 1000);
    ASSERT_EQ(open(plainWav(record, noise(32'000))), 0);
    EXPECT_EQ(errorOf([&] { (void)wav_.Duration(); }), 11);
}

TEST_F(DecWAVTest, a_file_opened_after_a_seek_in_another_has_no_lead_in) {
    ASSERT_EQ(open(adpcmFile(11'178, noise(51'200))), 0);
    EXPECT_EQ(seek(3, 1), 0);
    EXPECT_TRUE(wav_.hasLeadIn());
    const Bytes data = noise(51'200, 2);
    ASSERT_EQ(open(adpcmFile(11'178, data)), 0);
    EXPECT_FALSE(wav_.hasLeadIn());
    EXPECT_EQ(wav_.goToLeadIn().frames, 0);
    EXPECT_EQ(dataPosition(data), 0);
}

TEST_F(DecWAVTest, mpeg_sound_is_read_from_its_start_after_its_frames_were_counted) {
    WAVEFORMATEX record = pcm(44100, 1, 16);
    record.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
    record.nAvgBytesPerSec = 0;
    Bytes data;
    for (int frame = 0; frame < 100; ++frame) {
        const Bytes content = noise(413, static_cast<std::uint32_t>(frame));
        data.insert(data.end(), {0xFF, 0xFB, 0x90, 0xC4});
        data.insert(data.end(), content.begin(), content.end());
    }
    ASSERT_EQ(open(plainWav(record, data)), 0);
    EXPECT_EQ(wav_.Duration(), 2612); // 100 frames of 1152 samples
    EXPECT_EQ(wav_.Position(), 0);
    EXPECT_EQ(dataPosition(data), 0);
}

TEST_F(DecWAVTest, the_recorded_rate_of_mpeg_sound_without_a_count_holds_also_for_a_few_bytes) {
    WAVEFORMATEX record = pcm(8000, 1, 16);
    record.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
    record.nAvgBytesPerSec = 1000;
    ASSERT_EQ(open(plainWav(record, noise(5))), 0);
    EXPECT_EQ(wav_.Duration(), 5);
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

TEST_F(DecWAVTest, an_average_rate_of_0_makes_times_fail) {
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nAvgBytesPerSec = 0;
    ASSERT_EQ(open(plainWav(record, noise(100))), 0);
    EXPECT_EQ(errorOf([&] { (void)wav_.Duration(); }), 11);
    EXPECT_EQ(errorOf([&] { (void)seek(0, 1); }), 11);
    EXPECT_EQ(errorOf([&] { (void)seek(-1, 1); }), 11);
    EXPECT_EQ(errorOf([&] { (void)wav_.Position(); }), 6); // 0 / 0
    EXPECT_EQ(wav_.Bitrate(), 0);
    EXPECT_EQ(seek(50, 0), 0);
    ASSERT_EQ(open(plainWav(record, {})), 0);
    EXPECT_EQ(errorOf([&] { (void)wav_.Duration(); }), 6); // 0 / 0
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
    ASSERT_EQ(open(WavBytes()
                       .chunk("junk", Bytes(5000))
                       .format(pcm(8000, 1, 8))
                       .chunk("data", noise(100), 0x7FFFEF00u)
                       .bytes()),
              0);
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
} // namespace corvina::test
