// Places and rates in compressed WAVE files.

#include "sources/CompressedWave.h"
#include "sources/Mp3Frames.h"

#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <array>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

// A record with the number of frames in a block behind it.
struct BlockRecord {
    WAVEFORMATEX common{};
    WORD frames = 0;
};

BlockRecord blocks(WORD tag, DWORD rate, WORD blockBytes, WORD frames, DWORD bytesPerSecond) {
    BlockRecord record{.common = pcm(rate, 1, 4), .frames = frames};
    record.common.wFormatTag = tag;
    record.common.nBlockAlign = blockBytes;
    record.common.nAvgBytesPerSec = bytesPerSecond;
    record.common.cbSize = sizeof record.frames;
    return record;
}

// 44100 Hz, 128 kbit/s: 417 bytes, or 418 with padding.
Bytes mp3Frame(bool padded) {
    Bytes frame(padded ? 418 : 417, 0x55);
    const std::array<std::uint8_t, 4> header{0xFF, 0xFB,
                                             static_cast<std::uint8_t>(0x90 | padded << 1), 0xC4};
    std::copy(header.begin(), header.end(), frame.begin());
    return frame;
}

WAVEFORMATEX mp3Record(DWORD bytesPerSecond) {
    WAVEFORMATEX record = pcm(44100, 1, 16);
    record.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
    record.nAvgBytesPerSec = bytesPerSecond;
    return record;
}

class CompressedSound : public testing::Test {
protected:
    // The data alone, behind so many other bytes.
    void write(const Bytes& data, std::int32_t before = 0) {
        Bytes bytes(static_cast<std::size_t>(before), 0xEE);
        bytes.insert(bytes.end(), data.begin(), data.end());
        file_.close();
        file_ = access_.openForReading(folder_.write(L"data", bytes));
        ASSERT_TRUE(file_.isOpen());
        data_ = {.offset = before, .size = static_cast<std::int32_t>(data.size())};
    }
    void writeMp3Frames(int count, const Bytes& behind = {}) {
        Bytes data;
        for (int index = 0; index < count; ++index) {
            const Bytes frame = mp3Frame(index % 3 == 0);
            data.insert(data.end(), frame.begin(), frame.end());
        }
        data.insert(data.end(), behind.begin(), behind.end());
        write(data, 100);
    }

    std::optional<double> rate(const WAVEFORMATEX& record, std::int64_t counted = 0) {
        return CompressedWave(record, data_).rateInsteadOfRecord(access_, file_, counted);
    }
    std::optional<CompressedWave::Place> place(const WAVEFORMATEX& record, std::int64_t frame) {
        return CompressedWave(record, data_).placeOf(frame, access_, file_);
    }

    TempFolder folder_;
    FileAccess access_;
    FileRecord file_;
    RiffChunk data_;
};

TEST_F(CompressedSound, of_linear_and_mu_law_samples_nothing_is_known) {
    write(noise(4000));
    WAVEFORMATEX record = pcm(8000, 1, 8);
    record.nAvgBytesPerSec = 77;
    EXPECT_FALSE(CompressedWave(record, data_).isKnown());
    record.wFormatTag = WAVE_FORMAT_MULAW;
    EXPECT_FALSE(CompressedWave(record, data_).isKnown());
    EXPECT_EQ(rate(record), std::nullopt);
    EXPECT_EQ(place(record, 10), std::nullopt);
}

TEST_F(CompressedSound, a_record_without_its_number_of_frames_or_a_block_says_nothing) {
    write(noise(4000));
    BlockRecord record = blocks(WAVE_FORMAT_IMA_ADPCM, 8000, 256, 505, 4000);
    record.common.cbSize = 0;
    EXPECT_FALSE(CompressedWave(record.common, data_).isKnown());
    record = blocks(WAVE_FORMAT_IMA_ADPCM, 8000, 0, 505, 4000);
    EXPECT_FALSE(CompressedWave(record.common, data_).isKnown());
    record = blocks(WAVE_FORMAT_IMA_ADPCM, 8000, 256, 0, 4000);
    EXPECT_FALSE(CompressedWave(record.common, data_).isKnown());
}

TEST_F(CompressedSound, a_block_may_hold_a_single_frame) {
    write(noise(100));
    const BlockRecord record = blocks(WAVE_FORMAT_IMA_ADPCM, 8000, 4, 1, 1000);
    const CompressedWave wave(record.common, data_);
    EXPECT_TRUE(wave.isKnown());
    EXPECT_EQ(rate(record.common), 32'000);
    EXPECT_EQ(wave.frameOfBlockAt(12), 3);
    EXPECT_EQ(place(record.common, 7)->offset, 28);
}

TEST_F(CompressedSound, the_first_frame_of_a_block_follows_from_its_place) {
    write(noise(2560));
    const BlockRecord record = blocks(WAVE_FORMAT_IMA_ADPCM, 22050, 256, 505, 11178);
    const CompressedWave wave(record.common, data_);
    EXPECT_EQ(wave.frameOfBlockAt(0), 0);
    EXPECT_EQ(wave.frameOfBlockAt(255), 0);
    EXPECT_EQ(wave.frameOfBlockAt(256), 505);
    EXPECT_EQ(wave.frameOfBlockAt(0x7FFFFF00), 0x7FFFFFll * 505);
    EXPECT_EQ(CompressedWave(mp3Record(16000), data_).frameOfBlockAt(256), std::nullopt);
}

TEST_F(CompressedSound, without_a_sample_rate_nothing_follows) {
    write(noise(4000));
    EXPECT_EQ(rate(blocks(WAVE_FORMAT_IMA_ADPCM, 0, 256, 505, 4000).common), std::nullopt);
    EXPECT_EQ(rate(blocks(WAVE_FORMAT_IMA_ADPCM, 1, 256, 512, 4000).common), 0.5);
    WAVEFORMATEX record = mp3Record(16000);
    record.nSamplesPerSec = 0;
    EXPECT_FALSE(CompressedWave(record, data_).isKnown());
    record.nSamplesPerSec = 1;
    EXPECT_TRUE(CompressedWave(record, data_).isKnown());
}

TEST_F(CompressedSound, a_rounded_average_rate_is_the_records_own) {
    write(noise(4000));
    for (const DWORD recorded : {11177u, 11178u, 11188u})
        EXPECT_EQ(rate(blocks(WAVE_FORMAT_IMA_ADPCM, 22050, 256, 505, recorded).common),
                  std::nullopt)
            << recorded;
}

TEST_F(CompressedSound, an_average_rate_that_the_blocks_deny_is_replaced) {
    write(noise(4000));
    for (const DWORD recorded : {0u, 11025u, 16000u})
        EXPECT_NEAR(rate(blocks(WAVE_FORMAT_IMA_ADPCM, 22050, 256, 505, recorded).common).value(),
                    11177.8, 0.1)
            << recorded;
}

TEST_F(CompressedSound, a_recorded_rate_may_be_off_by_a_thousandth_and_a_byte) {
    write(noise(4000));
    const auto computed = [this](DWORD recorded) {
        return rate(blocks(WAVE_FORMAT_IMA_ADPCM, 8000, 4, 1, recorded).common);
    };
    EXPECT_EQ(computed(32'000 + 33), std::nullopt);
    EXPECT_EQ(computed(32'000 - 33), std::nullopt);
    EXPECT_EQ(computed(32'000 + 34), 32'000);
    EXPECT_EQ(computed(32'000 - 34), 32'000);
}

TEST_F(CompressedSound, a_frame_of_adpcm_is_reached_from_the_start_of_its_block) {
    write(noise(2560), 60);
    const BlockRecord record = blocks(WAVE_FORMAT_IMA_ADPCM, 22050, 256, 505, 11178);
    for (const auto& [frame, block, rest] :
         {std::array{0, 0, 0}, std::array{504, 0, 504}, std::array{505, 1, 0},
          std::array{3000, 5, 475}, std::array{5049, 9, 504}}) {
        const auto found = place(record.common, frame);
        ASSERT_TRUE(found) << frame;
        EXPECT_EQ(found->offset, 60 + block * 256);
        EXPECT_EQ(found->leadIn.frames, rest);
        EXPECT_FALSE(found->leadIn.fromReset);
    }
    EXPECT_EQ(place(record.common, 5050), std::nullopt);
}

TEST_F(CompressedSound, a_frame_of_gsm_is_reached_from_eight_blocks_before) {
    write(noise(65 * 30), 60);
    const BlockRecord record = blocks(WAVE_FORMAT_GSM610, 8000, 65, 320, 1625);
    const auto found = place(record.common, 320 * 20 + 7);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offset, 60 + 12 * 65);
    EXPECT_EQ(found->leadIn.frames, 8 * 320 + 7);
    EXPECT_TRUE(found->leadIn.fromReset);
    EXPECT_EQ(place(record.common, 320 * 3)->offset, 60);
    EXPECT_EQ(place(record.common, 320 * 3)->leadIn.frames, 320 * 3);
}

TEST_F(CompressedSound, mpeg_frames_are_counted_to_the_first_byte_that_begins_none) {
    for (const Bytes& behind : {Bytes{}, Bytes(3, 0xFF), Bytes(500, 0), mp3Frame(false)}) {
        writeMp3Frames(200, behind);
        Mp3Frames frames(access_, file_, data_);
        int count = 0;
        while (frames.step())
            ++count;
        const int more = behind.size() == 417 ? 1 : 0;
        EXPECT_EQ(count, 200 + more);
        EXPECT_EQ(frames.samplesSoFar(), (200 + more) * 1152);
    }
}

TEST_F(CompressedSound, no_header_of_another_layer_or_without_a_length_is_a_frame) {
    for (const std::array<std::uint8_t, 4>& header :
         {std::array<std::uint8_t, 4>{0xFF, 0xFD, 0x90, 0xC4},
          {0xFF, 0xEB, 0x90, 0xC4},
          {0xFF, 0xFB, 0x00, 0xC4},
          {0xFF, 0xFB, 0xF0, 0xC4},
          {0xFF, 0xFB, 0x9C, 0xC4},
          {0xFE, 0xFB, 0x90, 0xC4},
          {0xFF, 0x1B, 0x90, 0xC4}}) {
        Bytes frame = mp3Frame(false);
        std::copy(header.begin(), header.end(), frame.begin());
        write(frame);
        EXPECT_FALSE(Mp3Frames(access_, file_, data_).step()) << int{header[1]} << int{header[2]};
    }
}

TEST_F(CompressedSound, the_rate_of_mpeg_sound_without_one_follows_from_its_count_or_its_frames) {
    writeMp3Frames(300);
    const double bytes = data_.size;
    EXPECT_NEAR(rate(mp3Record(0)).value(), bytes * 44100 / (300 * 1152), 0.01);
    EXPECT_NEAR(rate(mp3Record(0), 300 * 1152 - 700).value(), bytes * 44100 / (300 * 1152 - 700),
                0.01);
    EXPECT_NEAR(rate(mp3Record(9000), 300 * 1152).value(), bytes * 44100 / (300 * 1152), 0.01);
    EXPECT_EQ(rate(mp3Record(15976), 300 * 1152), std::nullopt);
    EXPECT_EQ(rate(mp3Record(9000)), std::nullopt);
}

TEST_F(CompressedSound, a_count_that_no_bit_rate_explains_is_not_believed) {
    writeMp3Frames(300);
    for (const std::int64_t counted : {std::int64_t{1}, std::int64_t{0xFFFFFFFF}})
        EXPECT_NEAR(rate(mp3Record(0), counted).value(), data_.size * 44100.0 / (300 * 1152), 0.01);
    write(Bytes(5000, 0));
    EXPECT_EQ(rate(mp3Record(0)), std::nullopt);
}

TEST_F(CompressedSound, a_count_is_believed_from_900_to_44000_bytes_a_second) {
    write(noise(5000));
    for (const auto& [bytesPerSecond, believed] :
         {std::pair{899u, false}, std::pair{900u, true}, std::pair{44'000u, true},
          std::pair{44'001u, false}}) {
        WAVEFORMATEX record = mp3Record(9000);
        record.nSamplesPerSec = bytesPerSecond; // a frame for each of the 5000 bytes
        EXPECT_EQ(rate(record, 5000),
                  believed ? std::optional<double>(bytesPerSecond) : std::nullopt);
    }
}

TEST_F(CompressedSound, a_count_of_a_single_frame_is_believed_too) {
    write(noise(5000));
    WAVEFORMATEX record = mp3Record(9000);
    record.nSamplesPerSec = 1;
    EXPECT_EQ(rate(record, 1), 5000);
    EXPECT_EQ(rate(record, 0), std::nullopt);
}

TEST_F(CompressedSound, the_frames_of_mpeg_sound_are_counted_only_if_the_record_has_no_rate) {
    writeMp3Frames(30);
    EXPECT_TRUE(rate(mp3Record(0)));
    EXPECT_EQ(rate(mp3Record(1)), std::nullopt);
    write({});
    EXPECT_EQ(rate(mp3Record(0)), std::nullopt);
    EXPECT_EQ(rate(mp3Record(0), 1000), std::nullopt);
}

TEST_F(CompressedSound, mpeg_sound_of_long_frames_is_reached_from_three_before_it) {
    Bytes data;
    for (int index = 0; index < 20; ++index) {
        Bytes frame(1044, 0x55); // 320 kbit/s
        const std::array<std::uint8_t, 4> header{0xFF, 0xFB, 0xE0, 0xC4};
        std::copy(header.begin(), header.end(), frame.begin());
        data.insert(data.end(), frame.begin(), frame.end());
    }
    write(data, 100);
    for (const auto& [frame, first] : {std::pair{10, 7}, std::pair{3, 0}, std::pair{2, 0}}) {
        const auto found = place(mp3Record(40'000), frame * 1152 + 5);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->offset, 100 + first * 1044);
        EXPECT_EQ(found->leadIn.frames, (frame - first) * 1152 + 5);
    }
}

TEST_F(CompressedSound, mpeg_sound_is_reached_from_frames_before_it) {
    writeMp3Frames(300);
    const auto found = place(mp3Record(16000), 44100);
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->leadIn.fromReset);
    // Frame 38 holds the place; frames 34 to 37 are more than 1536 bytes.
    EXPECT_EQ(found->leadIn.frames, 44100 - 34 * 1152);
    EXPECT_EQ(found->offset, 100 + 34 * 417 + 12);
    EXPECT_EQ(place(mp3Record(16000), 0)->offset, 100);
    EXPECT_EQ(place(mp3Record(16000), 0)->leadIn.frames, 0);
    EXPECT_EQ(place(mp3Record(16000), 300 * 1152), std::nullopt);
}

} // namespace
} // namespace corvina::test
