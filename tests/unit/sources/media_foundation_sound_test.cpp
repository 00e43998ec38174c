// The source of MP4 and AAC over a stand-in for the system's Media Foundation: formats, places and
// mixes that no file at hand has.

#include "DecodedFiles.h"
#include "Mp4Movies.h"
#include "StandInMovies.h"
#include "sources/MediaFoundationSource.h"

#include <cstring>

#include <mmreg.h>

#include <ksmedia.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Samples = std::vector<std::int16_t>;

constexpr LONGLONG second = 10'000'000;

class MovieSound : public testing::Test {
protected:
    // One channel of 1000 samples a second, in blocks of half a second that begin at that time.
    void layBlocks(int count, LONGLONG start = 0) {
        movie = {};
        movie.rate = 1000;
        movie.channels = 1;
        movie.setDuration(count * second / 2);
        for (int index = 0; index < count; ++index)
            movie.reads.push_back(samplesRead(500, start + index * second / 2,
                                              static_cast<std::int16_t>(index * 500)));
    }
    // One block of a movie with so many channels.
    void layFrames(UINT32 channels, const Samples& samples) {
        movie = {};
        movie.channels = channels;
        movie.reads = {samplesRead(samples.size())};
        std::memcpy(movie.reads[0].bytes.data(), samples.data(), movie.reads[0].bytes.size());
    }

    std::int32_t open() { return source.OpenSource(L"a file that only the stand-in has.aac"); }
    std::int32_t seek(std::int32_t value, std::int32_t mode = SeekMode::seconds) {
        return source.SeekTo(value, mode);
    }
    Samples readAll() {
        const Bytes bytes = readToEnd(source, 300).bytes;
        Samples samples(bytes.size() / sizeof(std::int16_t));
        if (!bytes.empty())
            std::memcpy(samples.data(), bytes.data(), bytes.size());
        return samples;
    }
    void readABit() {
        Bytes buffer(10);
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(buffer.data(), 10, got), 0);
    }
    // The first sample and the number of those that are left.
    std::pair<int, std::size_t> rest() {
        const Samples samples = readAll();
        return {samples.empty() ? -1 : samples[0], samples.size()};
    }

    MediaFoundationSource source{standInMovies};
};

TEST_F(MovieSound, that_is_not_there_or_cannot_be_decoded_returns_12) {
    for (const char* call : {"SelectSound", "SetCurrentMediaType", "MFCreateMediaType"}) {
        layBlocks(2);
        movie.failing = call;
        EXPECT_EQ(open(), 12) << call;
        EXPECT_EQ(source.CloseSource(), 1);
    }
}

TEST_F(MovieSound, of_a_file_that_no_reader_takes_returns_1) {
    for (const char* call : {"MFCreateFile", "MFCreateSourceReaderFromByteStream"}) {
        layBlocks(2);
        movie.failing = call;
        EXPECT_EQ(open(), 1) << call;
    }
}

TEST_F(MovieSound, of_a_file_with_a_long_name_is_opened_by_the_name_that_the_system_takes) {
    layBlocks(2);
    const std::wstring name = L"C:\\" + std::wstring(300, L'a') + L".aac";
    EXPECT_EQ(source.OpenSource(name), 0);
    EXPECT_EQ(movie.openedPath, L"\\\\?\\" + name);
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(movie.openedPath, L"a file that only the stand-in has.aac");
}

TEST_F(MovieSound, of_a_device_is_none) {
    layBlocks(2);
    EXPECT_EQ(source.OpenSource(L"C:\\music\\aux.m4a"), 1);
    EXPECT_EQ(movie.openedPath, L"");
}

TEST_F(MovieSound, waits_for_a_library_that_can_be_started) {
    layBlocks(2);
    movie.failing = "MFStartup";
    EXPECT_EQ(open(), 3);
    movie.failing = "";
    EXPECT_EQ(open(), 0);
}

TEST_F(MovieSound, of_a_failed_open_leaves_nothing_of_the_file_before) {
    layBlocks(4, -second);
    ASSERT_EQ(open(), 0);
    ASSERT_EQ(seek(1), 0);
    readABit();
    movie.failing = "SelectSound";
    EXPECT_EQ(open(), 12);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_EQ(source.Duration(), 0);
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_THAT(readAll(), IsEmpty());
    EXPECT_EQ(seek(0), 4);
    EXPECT_EQ(movie.readers, 0);
}

TEST_F(MovieSound, of_a_closed_file_is_not_read_on) {
    layBlocks(2);
    ASSERT_EQ(open(), 0);
    readABit();
    EXPECT_EQ(source.CloseSource(), 0);
    Bytes buffer(10, 0xEE);
    std::int32_t got = -1;
    EXPECT_EQ(source.Read(buffer.data(), 10, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(buffer, Bytes(10, 0xEE));
}

TEST_F(MovieSound, is_let_go_of_with_its_source) {
    layBlocks(2);
    {
        MediaFoundationSource other(standInMovies);
        ASSERT_EQ(other.OpenSource(L"a file that only the stand-in has.aac"), 0);
        EXPECT_EQ(movie.readers, 1);
    }
    EXPECT_EQ(movie.readers, 0);
}

TEST_F(MovieSound, has_places_to_go_to) {
    EXPECT_TRUE(source.Seekable());
    layBlocks(2);
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(source.Seekable());
}

TEST_F(MovieSound, is_delivered_block_by_block_to_its_end) {
    layBlocks(3);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(source.Duration(), 1500);
    EXPECT_FALSE(source.EndOfStream());
    const Samples samples = readAll();
    ASSERT_THAT(samples, SizeIs(1500));
    for (std::size_t index = 0; index < samples.size(); ++index)
        ASSERT_EQ(samples[index], static_cast<int>(index));
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 1500);
}

TEST_F(MovieSound, of_a_file_without_a_block_is_at_its_end_at_once) {
    layBlocks(0);
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_THAT(readAll(), IsEmpty());
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST_F(MovieSound, of_six_channels_is_stereo_from_the_first_block_on) {
    layFrames(6, {24142, 0, 0, 0, 0, 0, 0, 24142, 0, 0, 0, 0, 0, 0, 24142, 30000, 0, 0});
    movie.reads.push_back(movie.reads[0]);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
    EXPECT_THAT(readAll(),
                ElementsAre(10000, 0, 0, 10000, 7071, 7071, 10000, 0, 0, 10000, 7071, 7071));
}

TEST_F(MovieSound, of_three_channels_is_mixed_by_the_speakers_that_the_file_names) {
    layFrames(3, {100, 200, 30000});
    movie.speakers = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT | SPEAKER_LOW_FREQUENCY;
    ASSERT_EQ(open(), 0);
    EXPECT_THAT(readAll(), ElementsAre(100, 200));
}

TEST_F(MovieSound, of_one_or_two_channels_stays_as_it_is_whatever_its_speakers_are) {
    for (const UINT32 channels : {1u, 2u}) {
        layFrames(channels, {1000, 2000, 3000, 4000});
        movie.speakers = SPEAKER_LOW_FREQUENCY | SPEAKER_BACK_CENTER;
        ASSERT_EQ(open(), 0);
        EXPECT_EQ(source.Channels(), static_cast<int>(channels));
        EXPECT_THAT(readAll(), ElementsAre(1000, 2000, 3000, 4000));
    }
}

TEST_F(MovieSound, is_sought_to_the_very_sample_wherever_the_blocks_begin) {
    layBlocks(6);
    movie.reads.insert(movie.reads.begin() + 3, samplesRead(0, 3 * second / 2));
    ASSERT_EQ(open(), 0);
    for (const auto& [value, mode, first] :
         {std::tuple{2, SeekMode::seconds, 2000}, std::tuple{0, SeekMode::seconds, 0},
          std::tuple{1, SeekMode::seconds, 1000}, std::tuple{10, SeekMode::percent, 300},
          std::tuple{99, SeekMode::percent, 2970}}) {
        ASSERT_EQ(seek(value, mode), 0);
        EXPECT_EQ(source.Position(), first);
        EXPECT_FALSE(source.EndOfStream());
        EXPECT_EQ(rest(), std::pair(first, static_cast<std::size_t>(3000 - first)));
    }
}

// A decoder is exact at a place only if it had the frames before it.
TEST_F(MovieSound, is_asked_for_from_a_fifth_of_a_second_before_a_place) {
    layBlocks(6);
    ASSERT_EQ(open(), 0);
    for (const std::int32_t seconds : {2, 1, 0})
        EXPECT_EQ(seek(seconds), 0);
    EXPECT_THAT(movie.seeks, ElementsAre(2 * second - second / 5, second - second / 5, 0));
}

TEST_F(MovieSound, whose_times_do_not_begin_with_0_has_places_from_its_start_on) {
    layBlocks(6, 5 * second);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(source.Position(), 0);
    ASSERT_EQ(seek(2), 0);
    EXPECT_THAT(movie.seeks, ElementsAre(7 * second - second / 5));
    EXPECT_EQ(source.Position(), 2000);
    EXPECT_EQ(rest(), std::pair(2000, std::size_t{1000}));
}

TEST_F(MovieSound, sought_where_its_last_block_ends_is_at_its_end) {
    layBlocks(6);
    ASSERT_EQ(open(), 0);
    ASSERT_EQ(seek(3), 0);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 3000);
    EXPECT_THAT(readAll(), IsEmpty());
    ASSERT_EQ(seek(1), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(rest(), std::pair(1000, std::size_t{2000}));
}

TEST_F(MovieSound, that_begins_behind_the_place_is_heard_from_where_it_begins) {
    layBlocks(6);
    movie.reads.erase(movie.reads.begin() + 2, movie.reads.begin() + 4);
    ASSERT_EQ(open(), 0);
    ASSERT_EQ(seek(1), 0);
    EXPECT_EQ(source.Position(), 2000);
    EXPECT_EQ(rest(), std::pair(2000, std::size_t{1000}));
}

TEST_F(MovieSound, is_not_sought_beyond_its_last_percent_or_second) {
    layBlocks(6);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(seek(100, SeekMode::percent), 4);
    EXPECT_EQ(seek(4), 4);
    EXPECT_THAT(movie.seeks, IsEmpty());
}

// As where pictures go on for longer. The system's reader is not asked for what is not there.
TEST_F(MovieSound, sought_where_it_ends_by_its_file_is_at_its_end) {
    TempFolder folder;
    const std::wstring path = folder.write(L"a.m4a", Mp4Movie().bytes());
    layBlocks(6);
    ASSERT_EQ(source.OpenSource(path), 0);
    readABit();
    ASSERT_EQ(seek(1), 0);
    EXPECT_THAT(movie.seeks, IsEmpty());
    EXPECT_EQ(source.Position(), 1000);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_THAT(readAll(), IsEmpty());
    ASSERT_EQ(seek(99, SeekMode::percent), 0);
    EXPECT_EQ(source.Position(), 2970);
    ASSERT_EQ(seek(0), 0);
    EXPECT_EQ(rest(), std::pair(0, std::size_t{3000}));
}

TEST_F(MovieSound, of_a_file_whose_tables_are_broken_is_not_asked_for) {
    TempFolder folder;
    Mp4Movie broken;
    broken.tracks[0].runs = {};
    layBlocks(6);
    EXPECT_EQ(source.OpenSource(folder.write(L"a.m4a", broken.bytes())), 1);
    EXPECT_EQ(movie.calls, 0u);
}

TEST_F(MovieSound, whose_reader_refuses_a_seek_returns_4) {
    layBlocks(6);
    ASSERT_EQ(open(), 0);
    movie.failing = "SetCurrentPosition";
    EXPECT_EQ(seek(1), 4);
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_EQ(movie.readers, 0);
}

TEST_F(MovieSound, has_a_position_of_0_in_blocks_before_its_start) {
    layBlocks(2, 5 * second);
    movie.reads[1].time = 2 * second;
    ASSERT_EQ(open(), 0);
    Bytes buffer(1200);
    std::int32_t got = 0;
    ASSERT_EQ(source.Read(buffer.data(), 1200, got), 0);
    EXPECT_EQ(source.Position(), 0);
}

} // namespace
} // namespace corvina::test
