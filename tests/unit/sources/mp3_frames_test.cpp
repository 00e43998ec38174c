// The frames of MPEG audio, layer III: how long they are, and where they end.

#include "sources/Mp3Frames.h"
#include "support/FileBytes.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

int reads = 0;
bool readsFail = false;
bool movesFail = false;

BOOL WINAPI countedRead(HANDLE file, LPVOID to, DWORD bytes, LPDWORD got, LPOVERLAPPED state) {
    ++reads;
    return !readsFail && ::ReadFile(file, to, bytes, got, state);
}

DWORD WINAPI move(HANDLE file, LONG distance, PLONG high, DWORD method) {
    return movesFail ? INVALID_SET_FILE_POINTER : ::SetFilePointer(file, distance, high, method);
}

const FileApi countedFiles = [] {
    FileApi api;
    api.readFile = &countedRead;
    api.setFilePointer = &move;
    return api;
}();

// As the header of a frame counts them, from 1 on.
struct Version {
    int number;
    std::vector<int> kilobits;
    std::vector<int> sampleRates;
    int samples;
};
const Version versions[] = {
    {3,
     {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
     {44100, 48000, 32000},
     1152},
    {2, {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}, {22050, 24000, 16000}, 576},
    {0, {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}, {11025, 12000, 8000}, 576}};

Bytes frameOf(int version, std::size_t bitRate, std::size_t sampleRate, bool padded,
              std::size_t bytes) {
    Bytes frame(bytes, 0x55);
    frame[0] = 0xFF;
    frame[1] = static_cast<std::uint8_t>(0xE3 | version << 3);
    frame[2] = static_cast<std::uint8_t>(bitRate << 4 | sampleRate << 2 | (padded ? 2 : 0));
    frame[3] = 0xC4;
    return frame;
}

// 128 kbit/s at 32000 Hz: 576 bytes.
Bytes equalFrames(int count) {
    Bytes data;
    for (int index = 0; index < count; ++index) {
        const Bytes frame = frameOf(3, 9, 2, false, 576);
        data.insert(data.end(), frame.begin(), frame.end());
    }
    return data;
}

class MpegFrames : public testing::Test {
protected:
    void SetUp() override {
        reads = 0;
        readsFail = movesFail = false;
    }

    // A part of that size begins behind so many bytes.
    void write(const Bytes& data, std::size_t size, std::size_t before = 0) {
        Bytes bytes(before, 0xEE);
        bytes.insert(bytes.end(), data.begin(), data.end());
        file_.close();
        file_ = access_.openForReading(folder_.write(L"data", bytes));
        ASSERT_TRUE(file_.isOpen());
        part_ = {.offset = static_cast<std::int32_t>(before),
                 .size = static_cast<std::int32_t>(size)};
        reads = 0;
    }
    int count() {
        Mp3Frames frames(access_, file_, part_);
        int count = 0;
        while (frames.step())
            ++count;
        return count;
    }

    TempFolder folder_;
    FileAccess access_{countedFiles};
    FileRecord file_;
    RiffChunk part_;
};

TEST_F(MpegFrames, of_each_version_bit_rate_and_sample_rate_have_their_length) {
    struct Place {
        std::size_t offset;
        int samples;
    };
    std::vector<Place> places;
    Bytes data;
    constexpr std::size_t before = 50;
    for (const auto& [version, kilobits, sampleRates, samples] : versions)
        for (std::size_t rate = 0; rate < sampleRates.size(); ++rate)
            for (std::size_t bits = 0; bits < kilobits.size(); ++bits) {
                const bool padded = places.size() % 3 == 0;
                const int bytes = samples / 8 * kilobits[bits] * 1000 / sampleRates[rate] + padded;
                places.push_back({before + data.size(), samples});
                const Bytes frame =
                    frameOf(version, bits + 1, rate, padded, static_cast<std::size_t>(bytes));
                data.insert(data.end(), frame.begin(), frame.end());
            }
    write(data, data.size(), before);
    Mp3Frames frames(access_, file_, part_);
    std::int64_t samples = 0;
    for (const Place& place : places) {
        ASSERT_TRUE(frames.step()) << place.offset;
        EXPECT_EQ(frames.offset(), static_cast<std::int64_t>(place.offset));
        EXPECT_EQ(frames.samples(), place.samples);
        EXPECT_EQ(frames.firstSample(), samples);
        samples += place.samples;
        EXPECT_EQ(frames.samplesSoFar(), samples);
    }
    EXPECT_FALSE(frames.step());
}

TEST_F(MpegFrames, are_read_in_large_pieces) {
    const Bytes data = equalFrames(300);
    write(data, data.size(), 1000);
    EXPECT_EQ(count(), 300);
    EXPECT_LE(reads, 3);
}

TEST_F(MpegFrames, end_with_a_file_that_is_shorter_than_it_says) {
    write(equalFrames(150), std::size_t{400} * 576);
    EXPECT_EQ(count(), 150);
}

TEST_F(MpegFrames, end_with_one_that_is_cut) {
    for (const std::size_t cut : {1u, 2u, 3u, 4u, 500u, 572u, 573u, 576u}) {
        write(equalFrames(4), std::size_t{4} * 576 - cut);
        EXPECT_EQ(count(), cut <= 572 ? 4 : 3) << "the header counts, " << cut;
    }
}

TEST_F(MpegFrames, may_be_no_more_than_a_header) {
    write(equalFrames(1), 4);
    EXPECT_EQ(count(), 1);
    write(equalFrames(1), 3);
    EXPECT_EQ(count(), 0);
}

TEST_F(MpegFrames, end_where_the_file_cannot_be_read) {
    write(equalFrames(4), std::size_t{4} * 576);
    readsFail = true;
    EXPECT_EQ(count(), 0);
    readsFail = false;
    movesFail = true;
    EXPECT_EQ(count(), 0);
    movesFail = false;
    EXPECT_EQ(count(), 4);
}

} // namespace
} // namespace corvina::test
