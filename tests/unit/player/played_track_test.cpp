// A file on its way to the device: what is read of it, and where a seek leads.

#include "TrackFixture.h"
#include "sources/DecWAV.h"
#include "support/TempFolder.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAreArray;

class TrackOfFrames : public ::testing::Test {
protected:
    TrackOfFrames() { fakeAcm.reset(); }

    FrameNumbers read(std::size_t frames) {
        FrameNumbers numbers(frames);
        const auto bytes = static_cast<std::int32_t>(frames * sizeof(std::int16_t));
        const std::int32_t got = track.read(numbers.data(), bytes, false);
        numbers.resize(static_cast<std::size_t>(got) / sizeof(std::int16_t));
        return numbers;
    }

    std::shared_ptr<MemorySource> source = numberedSource(0, 3000);
    PlayedTrack track{L"name", source, fakeAcmApi, nullptr};
};

TEST_F(TrackOfFrames, knows_its_file_its_source_and_its_format) {
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.file(), L"name");
    EXPECT_EQ(track.source(), source.get());
    EXPECT_EQ(track.format(), (PlayedFormat{.sampleRate = 1000, .channels = 1, .bits = 16}));
}

TEST_F(TrackOfFrames, keeps_the_numbers_of_its_source_if_the_converter_changes_the_width) {
    auto wide = std::make_shared<MemorySource>(pcm(1000, 2, 24), Bytes(600));
    fakeAcm.refusedBits = {24};
    PlayedTrack other(L"", wide, fakeAcmApi, nullptr);
    ASSERT_TRUE(other.begin());
    EXPECT_EQ(other.format().bits, 16);
    EXPECT_EQ(other.sourceFormat().wBitsPerSample, 24);
    EXPECT_EQ(other.sourceFormat().nBlockAlign, 6);
    EXPECT_EQ(other.sourceFormat().nAvgBytesPerSec, 6000u);
}

TEST_F(TrackOfFrames, does_not_begin_without_a_format) {
    source->hasFormat = false;
    EXPECT_FALSE(track.begin());
}

TEST_F(TrackOfFrames, is_read_in_order_and_knows_how_far) {
    ASSERT_TRUE(track.begin());
    EXPECT_THAT(read(700), ElementsAreArray(numbersFrom(0, 700)));
    EXPECT_EQ(track.position(), 700);
    EXPECT_FALSE(track.finished(false));
    EXPECT_THAT(read(2000), ElementsAreArray(numbersFrom(700, 2000)));
    EXPECT_EQ(track.position(), 2700);
}

TEST_F(TrackOfFrames, is_finished_when_its_last_frame_was_read) {
    ASSERT_TRUE(track.begin());
    // The source has reported its end already, but half a second is still to come.
    read(2900);
    EXPECT_TRUE(source->EndOfStream());
    EXPECT_FALSE(track.finished(false));
    EXPECT_THAT(read(500), ElementsAreArray(numbersFrom(2900, 100)));
    EXPECT_TRUE(track.finished(false));
}

TEST_F(TrackOfFrames, goes_on_at_any_millisecond_though_sources_are_moved_to_seconds) {
    ASSERT_TRUE(track.begin());
    read(100);
    for (const std::int32_t milliseconds : {1250, 2000, 0, 2999, 1}) {
        ASSERT_TRUE(track.seek(milliseconds));
        EXPECT_EQ(track.position(), milliseconds);
        EXPECT_THAT(read(1), ElementsAreArray({milliseconds}));
        EXPECT_EQ(source->position % 2, 0u);
    }
}

TEST_F(TrackOfFrames, reads_on_from_the_block_before_if_the_source_says_that_it_is_there) {
    ASSERT_TRUE(track.begin());
    source->reportedMs = 600; // 400 frames before the second
    ASSERT_TRUE(track.seek(1000));
    EXPECT_EQ(track.position(), 1000);
    EXPECT_THAT(read(1), ElementsAreArray({1400}));
}

TEST_F(TrackOfFrames, does_not_believe_a_place_that_no_block_reaches) {
    ASSERT_TRUE(track.begin());
    for (const std::int32_t reported : {499, 1001, 0}) {
        source->reportedMs = reported;
        ASSERT_TRUE(track.seek(1000));
        EXPECT_THAT(read(1), ElementsAreArray({1000})) << reported;
    }
}

TEST_F(TrackOfFrames, ends_when_a_seek_leads_behind_its_end) {
    ASSERT_TRUE(track.begin());
    ASSERT_TRUE(track.seek(2999 + 1));
    EXPECT_THAT(read(10), ElementsAreArray(FrameNumbers{}));
    EXPECT_TRUE(track.finished(false));
}

TEST_F(TrackOfFrames, stays_at_its_end_when_a_seek_leads_into_the_second_behind_it) {
    ASSERT_TRUE(track.begin());
    EXPECT_TRUE(track.seek(3500));
    EXPECT_EQ(track.position(), 3000);
    EXPECT_THAT(read(10), ElementsAreArray(FrameNumbers{}));
    EXPECT_TRUE(track.finished(false));
}

TEST_F(TrackOfFrames, that_cannot_be_moved_is_opened_again_for_its_beginning_alone) {
    ASSERT_TRUE(track.begin());
    read(100);
    source->seekResult = SourceResult::outOfRange;
    EXPECT_FALSE(track.seek(1000));
    EXPECT_EQ(source->opens, 0);
    EXPECT_TRUE(track.seek(999)); // within the first second
    EXPECT_EQ(source->opens, 1);
    EXPECT_EQ(source->closes, 1);
    EXPECT_THAT(read(1), ElementsAreArray({999}));
}

TEST_F(TrackOfFrames, is_closed_once_and_cannot_be_begun_or_moved_afterwards) {
    ASSERT_TRUE(track.begin());
    track.close();
    track.close();
    EXPECT_EQ(source->closes, 1);
    EXPECT_EQ(fakeAcm.openStreams, 0);
    EXPECT_FALSE(track.begin());
    EXPECT_FALSE(track.seek(0));
    EXPECT_EQ(source->opens, 0);
}

TEST_F(TrackOfFrames, of_PCM_jumps_without_a_search_for_a_codec) {
    ASSERT_TRUE(track.begin());
    const std::size_t openings = fakeAcm.openings.size();
    ASSERT_TRUE(track.seek(1250));
    EXPECT_EQ(fakeAcm.openings.size(), openings);
}

TEST_F(TrackOfFrames, of_compressed_sound_jumps_with_another_stream_of_the_codec) {
    source->format.wFormatTag = WAVE_FORMAT_ADPCM;
    ASSERT_TRUE(track.begin());
    read(100);
    const std::size_t openings = fakeAcm.openings.size();
    ASSERT_TRUE(track.seek(1250));
    EXPECT_GT(fakeAcm.openings.size(), openings);
    EXPECT_EQ(fakeAcm.openStreams, 1);
    EXPECT_THAT(read(1), ElementsAreArray({1250}));
    source->hasFormat = false;
    EXPECT_FALSE(track.seek(0)) << "no codec is found";
}

TEST(TrackOfBytes, is_read_byte_by_byte_and_knows_how_far) {
    fakeAcm.reset();
    const Bytes sound = noise(1000);
    PlayedTrack track(L"", std::make_shared<MemorySource>(pcm(1000, 1, 8), sound), fakeAcmApi,
                      nullptr);
    ASSERT_TRUE(track.begin());
    Bytes read(100);
    EXPECT_EQ(track.read(read.data(), 100, false), 100);
    EXPECT_EQ(track.position(), 100);
    EXPECT_EQ(track.read(read.data(), 1, false), 1);
    EXPECT_EQ(track.position(), 101);
    EXPECT_EQ(read[0], sound[100]);
}

TEST(PlayedFormat, without_a_rate_has_no_milliseconds) {
    const volatile std::int32_t none = 0; // which the compiler does not know
    EXPECT_EQ((PlayedFormat{.sampleRate = none, .channels = 1, .bits = 8}.millisecondsOf(3)), 0);
    EXPECT_EQ((PlayedFormat{.sampleRate = 1, .channels = 1, .bits = 8}.millisecondsOf(3)), 3000);
}

TEST(PlayedFormat, is_silent_at_half_of_the_range_in_8_bits) {
    EXPECT_EQ((PlayedFormat{.sampleRate = 8000, .channels = 1, .bits = 8}.silence()), 0x80);
    EXPECT_EQ((PlayedFormat{.sampleRate = 8000, .channels = 1, .bits = 16}.silence()), 0);
}

TEST(TrackOfManyChannels, has_two_once_it_is_mixed_also_after_a_seek) {
    fakeAcm.reset();
    auto source = std::make_shared<MemorySource>(pcm(1000, 6, 16), Bytes(12 * 2000));
    PlayedTrack track(L"", source, fakeAcmApi, nullptr);
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.format().channels, 6);
    EXPECT_TRUE(track.mixToStereo());
    EXPECT_EQ(track.format().channels, 2);
    ASSERT_TRUE(track.seek(1000));
    EXPECT_EQ(track.format().channels, 2);
    EXPECT_TRUE(track.mixToStereo());
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.format().channels, 2) << "begun again";
}

TEST(TrackOfTwoChannels, is_not_mixed) {
    fakeAcm.reset();
    PlayedTrack track(L"", std::make_shared<MemorySource>(pcm(1000, 2, 16), Bytes(4000)),
                      fakeAcmApi, nullptr);
    ASSERT_TRUE(track.begin());
    EXPECT_FALSE(track.mixToStereo());
    EXPECT_EQ(track.format().channels, 2);
}

class TrackOfWav : public ::testing::Test {
protected:
    TrackOfWav() { fakeAcm.reset(); }

    PlayedTrack open(const WavBytes& bytes) {
        const std::wstring file = folder.write(L"a.wav", bytes.bytes());
        auto source = std::make_shared<DecWAV>();
        EXPECT_EQ(source->OpenSource(file), 0);
        return PlayedTrack(file, source, fakeAcmApi, nullptr);
    }

    TempFolder folder;
    Bytes buffer = Bytes(4000);
};

TEST_F(TrackOfWav, ends_exactly_where_its_data_end_if_that_is_asked) {
    PlayedTrack track = open(
        WavBytes().format(pcm(1000, 1, 8)).chunk("data", noise(1000)).chunk("LIST", Bytes(2000)));
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.read(buffer.data(), 4000, true), 1000);
    EXPECT_TRUE(track.finished(true));
    EXPECT_EQ(track.read(buffer.data(), 4000, true), 0);
    EXPECT_EQ(track.durationMs(), 1000);
}

TEST_F(TrackOfWav, of_several_bytes_to_a_frame_ends_exactly_with_its_last_frame) {
    const auto wav =
        WavBytes().format(pcm(1000, 1, 16)).chunk("data", noise(900)).chunk("LIST", Bytes(2000));
    PlayedTrack heard = open(wav);
    ASSERT_TRUE(heard.begin());
    EXPECT_GT(heard.read(buffer.data(), 4000, false), 900) << "what follows is heard otherwise";
    heard.close();
    PlayedTrack track = open(wav);
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.read(buffer.data(), 500, true), 500);
    EXPECT_FALSE(track.finished(true));
    EXPECT_EQ(track.read(buffer.data(), 4000, true), 400);
    EXPECT_TRUE(track.finished(true));
    EXPECT_EQ(track.read(buffer.data(), 4000, true), 0);
    EXPECT_EQ(track.position(), 450);
}

TEST_F(TrackOfWav, goes_to_its_frames_whatever_its_rate_of_bytes_says) {
    const Bytes sound = noise(3000);
    for (const DWORD rate : {1000u, 250u, 7u, 4000u}) {
        WAVEFORMATEX format = pcm(500, 1, 16);
        format.nAvgBytesPerSec = rate;
        PlayedTrack track = open(WavBytes().format(format).chunk("data", sound));
        ASSERT_TRUE(track.begin());
        for (const std::int32_t milliseconds : {2346, 0, 1000, 2998}) {
            ASSERT_TRUE(track.seek(milliseconds)) << rate;
            EXPECT_EQ(track.position(), milliseconds / 2) << rate;
            EXPECT_EQ(track.read(buffer.data(), 2, true), 2) << rate;
            EXPECT_EQ(buffer[0], sound[static_cast<std::size_t>(milliseconds)]) << rate;
        }
        track.close();
    }
}

TEST_F(TrackOfWav, knows_where_it_was_moved_to_by_a_wrong_rate_of_bytes) {
    const Bytes sound = noise(3000);
    WAVEFORMATEX format = pcm(500, 1, 16);
    format.nAvgBytesPerSec = 251;
    auto source = std::make_shared<DecWAV>();
    const std::wstring file =
        folder.write(L"a.wav", WavBytes().format(format).chunk("data", sound).bytes());
    ASSERT_EQ(source->OpenSource(file), 0);
    PlayedTrack track(file, source, fakeAcmApi, nullptr);
    ASSERT_TRUE(track.begin());
    std::int32_t mode = SeekMode::seconds;
    ASSERT_EQ(source->SeekTo(3, mode), SourceResult::done);
    track.sourceMoved(3);
    ASSERT_TRUE(track.goOnWhereMoved());
    EXPECT_EQ(track.position(), 753 / 2);
    EXPECT_EQ(track.read(buffer.data(), 2, true), 2);
    EXPECT_EQ(buffer[0], sound[752]);
}

TEST_F(TrackOfWav, without_a_rate_of_bytes_begins_again_and_goes_nowhere_else) {
    WAVEFORMATEX format = pcm(1000, 1, 8);
    format.nAvgBytesPerSec = 0;
    const Bytes sound = noise(3000);
    PlayedTrack track = open(WavBytes().format(format).chunk("data", sound));
    ASSERT_TRUE(track.begin());
    EXPECT_FALSE(track.seek(2000));
    EXPECT_EQ(track.read(buffer.data(), 100, true), 100) << "it is read where it was";
    EXPECT_EQ(buffer[0], sound[0]);
    ASSERT_TRUE(track.seek(0));
    EXPECT_EQ(track.read(buffer.data(), 100, true), 100);
    EXPECT_EQ(buffer[99], sound[99]);
}

TEST_F(TrackOfWav, lasts_as_long_as_its_frames_and_not_as_its_rate_of_bytes_says) {
    WAVEFORMATEX format = pcm(1000, 1, 8);
    format.nAvgBytesPerSec = 250;
    PlayedTrack track = open(WavBytes().format(format).chunk("data", Bytes(3000)));
    ASSERT_TRUE(track.begin());
    EXPECT_EQ(track.durationMs(), 3000);
}

} // namespace
} // namespace corvina::test
