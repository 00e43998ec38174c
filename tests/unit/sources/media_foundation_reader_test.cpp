// One file of Media Foundation, over a stand-in: its format, its samples and its places.

#include "StandInMovies.h"
#include "com/Implements.h"
#include "sources/MediaFoundationReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <mferror.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

using Reader = MediaFoundationReader;
using Samples = std::vector<std::int16_t>;

constexpr auto allStreams = static_cast<DWORD>(MF_SOURCE_READER_ALL_STREAMS);
constexpr auto firstSound = static_cast<DWORD>(MF_SOURCE_READER_FIRST_AUDIO_STREAM);

class MovieReader : public testing::Test {
protected:
    void SetUp() override {
        movie = {};
        ASSERT_TRUE(library->start());
        reader = std::make_unique<Reader>(library);
    }

    bool openSound() { return reader->open(L"a.m4a") && reader->selectSound(); }

    // Another reader, of the movie as it is now.
    bool opensSound() {
        Reader other(library);
        return other.open(L"a.m4a") && other.selectSound();
    }

    Samples readSamples() {
        Reader::Block block{.samples = {-1}};
        return reader->read(block) ? block.samples : Samples{};
    }

    std::shared_ptr<MediaFoundationLibrary> library =
        std::make_shared<MediaFoundationLibrary>(standInMovies);
    std::unique_ptr<Reader> reader;
};

TEST_F(MovieReader, takes_the_first_sound_alone_in_16_bits) {
    ASSERT_TRUE(openSound());
    EXPECT_THAT(movie.selections, ElementsAre(Pair(allStreams, FALSE), Pair(firstSound, TRUE)));
    EXPECT_EQ(movie.wantedKind, MFMediaType_Audio);
    EXPECT_EQ(movie.wantedCoding, MFAudioFormat_PCM);
    EXPECT_EQ(movie.wantedBits, 16u);
}

TEST_F(MovieReader, has_the_format_and_the_speakers_of_the_sound) {
    movie.rate = 48000;
    movie.channels = 6;
    movie.speakers = 0x60F;
    ASSERT_TRUE(openSound());
    EXPECT_EQ(reader->format().rate, 48000u);
    EXPECT_EQ(reader->format().channels, 6u);
    EXPECT_EQ(reader->format().channelMask, 0x60Fu);
}

TEST_F(MovieReader, has_no_speakers_if_the_sound_names_none) {
    ASSERT_TRUE(openSound());
    EXPECT_EQ(reader->format().channelMask, 0u);
}

TEST_F(MovieReader, opens_sound_of_up_to_64_channels_and_a_million_samples_a_second) {
    for (const auto& [rate, channels, opens] :
         {std::tuple{1u, 1u, true}, std::tuple{1'000'000u, 64u, true}, std::tuple{0u, 1u, false},
          std::tuple{1'000'001u, 1u, false}, std::tuple{44100u, 0u, false},
          std::tuple{44100u, 65u, false}}) {
        movie.rate = rate;
        movie.channels = channels;
        EXPECT_EQ(opensSound(), opens) << rate << ' ' << channels;
    }
}

TEST_F(MovieReader, opens_no_sound_of_another_width_or_without_its_numbers) {
    for (auto number : {&StandInMovie::rate, &StandInMovie::channels, &StandInMovie::bits}) {
        movie = {};
        movie.*number = std::nullopt;
        EXPECT_FALSE(opensSound());
    }
    movie = {};
    movie.bits = 24;
    EXPECT_FALSE(opensSound());
}

TEST_F(MovieReader, opens_no_sound_if_a_call_for_it_fails) {
    for (const char* call :
         {"MFCreateFile", "MFCreateSourceReaderFromByteStream", "MFCreateMediaType",
          "SelectNothing", "SelectSound", "SetCurrentMediaType", "GetCurrentMediaType"}) {
        movie = {};
        movie.failing = call;
        EXPECT_FALSE(opensSound()) << call;
        EXPECT_EQ(movie.readers, 0) << call;
    }
}

TEST_F(MovieReader, keeps_the_library_which_is_stopped_and_freed_behind_it) {
    reader.reset();
    library.reset();
    movie = {};
    library = std::make_shared<MediaFoundationLibrary>(standInMovies);
    ASSERT_TRUE(library->start());
    ASSERT_TRUE(library->start());
    EXPECT_EQ(movie.starts, 1);
    EXPECT_EQ(movie.libraries, 2);
    reader = std::make_unique<Reader>(library);
    ASSERT_TRUE(openSound());
    library.reset();
    EXPECT_EQ(movie.starts, 1);
    reader.reset();
    EXPECT_EQ(movie.starts, 0);
    EXPECT_EQ(movie.libraries, 0);
}

TEST_F(MovieReader, has_no_library_that_does_not_start) {
    movie = {};
    movie.failing = "MFStartup";
    {
        MediaFoundationLibrary none(standInMovies);
        EXPECT_FALSE(none.start());
        EXPECT_EQ(movie.libraries, 0);
        EXPECT_FALSE(none.start());
    }
    EXPECT_EQ(movie.libraries, 0);
    EXPECT_EQ(movie.starts, 0);
}

TEST_F(MovieReader, has_the_duration_of_the_file) {
    movie.setDuration(30'000'000);
    ASSERT_TRUE(openSound());
    EXPECT_EQ(reader->duration(), 30'000'000);
    movie.failing = "GetPresentationAttribute";
    EXPECT_EQ(reader->duration(), 0);
}

TEST_F(MovieReader, has_times_whose_sums_still_fit) {
    constexpr LONGLONG farthest = std::numeric_limits<LONGLONG>::max() / 4;
    movie.setDuration(-1);
    movie.reads = {samplesRead(2, std::numeric_limits<LONGLONG>::max()),
                   samplesRead(2, std::numeric_limits<LONGLONG>::min()), samplesRead(2, farthest)};
    ASSERT_TRUE(openSound());
    EXPECT_EQ(reader->duration(), farthest);
    for (const LONGLONG time : {farthest, -farthest, farthest}) {
        Reader::Block block;
        ASSERT_TRUE(reader->read(block));
        EXPECT_EQ(block.time, time);
    }
}

// An object that is counted.
class Value final : public Implements<IPersist> {
public:
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
};

TEST_F(MovieReader, gives_back_a_duration_that_is_no_number) {
    const auto value = makeCom<Value>();
    ASSERT_TRUE(openSound());
    value->AddRef();
    movie.duration.vt = VT_UNKNOWN;
    movie.duration.punkVal = value.get();
    EXPECT_EQ(reader->duration(), 0);
    value->AddRef();
    EXPECT_EQ(value->Release(), 1u);
}

TEST_F(MovieReader, delivers_samples_and_their_time_one_block_after_the_other) {
    movie.reads = {samplesRead(6, 50, 1), samplesRead(2, 70, 7)};
    ASSERT_TRUE(openSound());
    Reader::Block block;
    ASSERT_TRUE(reader->read(block));
    EXPECT_THAT(block.samples, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(block.time, 50);
    ASSERT_TRUE(reader->read(block));
    EXPECT_THAT(block.samples, ElementsAre(7, 8));
    EXPECT_EQ(block.time, 70);
    EXPECT_FALSE(reader->read(block));
    EXPECT_EQ(movie.locks, 0);
}

TEST_F(MovieReader, cuts_a_frame_that_is_not_whole) {
    movie.reads = {samplesRead(5, 0, 1)};
    movie.reads[0].bytes.push_back(0xFF);
    ASSERT_TRUE(openSound());
    EXPECT_THAT(readSamples(), ElementsAre(1, 2, 3, 4));
}

TEST_F(MovieReader, passes_over_what_holds_no_frame) {
    movie.reads = {{.withoutSample = true},
                   {.withoutBuffer = true},
                   samplesRead(0),
                   samplesRead(1, 0, 55),
                   {.bytes = {1, 0, 1, 0}, .cannotBeLocked = true},
                   samplesRead(2, 90, 1)};
    ASSERT_TRUE(openSound());
    Reader::Block block{.samples = {9, 9}};
    ASSERT_TRUE(reader->read(block));
    EXPECT_THAT(block.samples, ElementsAre(1, 2));
    EXPECT_EQ(block.time, 90);
    EXPECT_EQ(movie.locks, 0);
}

TEST_F(MovieReader, waits_for_ten_thousand_events_and_no_longer) {
    constexpr std::size_t most = 10'000;
    movie.reads = std::vector<StandInRead>(most - 1, {.withoutSample = true});
    movie.reads.push_back(samplesRead(2, 0, 1));
    ASSERT_TRUE(openSound());
    EXPECT_THAT(readSamples(), ElementsAre(1, 2));
    movie.reads = {{.withoutSample = true}};
    movie.repeatsLast = true;
    movie.calls = 0;
    ASSERT_TRUE(openSound());
    EXPECT_THAT(readSamples(), ElementsAre());
    EXPECT_EQ(movie.calls, most);
}

TEST_F(MovieReader, is_at_the_end_if_a_read_fails_or_reports_it) {
    for (const StandInRead& end :
         {StandInRead{.result = MF_E_INVALIDREQUEST}, StandInRead{.flags = MF_SOURCE_READERF_ERROR},
          StandInRead{.flags = MF_SOURCE_READERF_ENDOFSTREAM}}) {
        movie.reads = {samplesRead(2, 0, 1), samplesRead(2, 0, 3)};
        movie.reads[0].result = end.result;
        movie.reads[0].flags = end.flags;
        ASSERT_TRUE(openSound());
        EXPECT_THAT(readSamples(), ElementsAre());
    }
}

// From its second block on the movie is another one.
void changeFormat(std::function<void()> change) {
    movie = {};
    movie.reads = {samplesRead(2, 0, 1), samplesRead(4, 0, 3)};
    movie.reads[1].flags = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED;
    movie.reads[1].before = std::move(change);
}

TEST_F(MovieReader, goes_on_with_a_format_that_is_the_same) {
    changeFormat([] { movie.speakers = 3; });
    ASSERT_TRUE(openSound());
    EXPECT_THAT(readSamples(), ElementsAre(1, 2));
    EXPECT_THAT(readSamples(), ElementsAre(3, 4, 5, 6));
}

TEST_F(MovieReader, is_at_the_end_where_the_format_becomes_another) {
    for (const auto& change :
         {+[] { movie.rate = 48000; }, +[] { movie.channels = 1; }, +[] { movie.bits = 8; }}) {
        changeFormat(change);
        ASSERT_TRUE(openSound());
        EXPECT_THAT(readSamples(), ElementsAre(1, 2));
        EXPECT_THAT(readSamples(), ElementsAre());
    }
}

TEST_F(MovieReader, seeks_to_a_time_that_is_not_below_0) {
    movie.reads = {samplesRead(2, 0, 1), samplesRead(2, 1000, 3), samplesRead(2, 2000, 5)};
    ASSERT_TRUE(openSound());
    EXPECT_TRUE(reader->seek(1500));
    EXPECT_THAT(readSamples(), ElementsAre(3, 4));
    EXPECT_TRUE(reader->seek(-1));
    EXPECT_THAT(readSamples(), ElementsAre(1, 2));
    EXPECT_THAT(movie.seeks, ElementsAre(1500, 0));
    movie.failing = "SetCurrentPosition";
    EXPECT_FALSE(reader->seek(2000));
}

// The system may do a seek on a thread of its own, and a read is done behind it.
TEST_F(MovieReader, ends_behind_a_seek_with_a_read) {
    movie.reads = {samplesRead(2)};
    for (const auto& [seeks, fails, reads, calls] :
         {std::tuple{false, false, false, 0u}, std::tuple{true, false, false, 1u},
          std::tuple{true, false, true, 1u}, std::tuple{true, true, false, 0u}}) {
        reader = std::make_unique<Reader>(library);
        ASSERT_TRUE(openSound());
        movie.calls = 0;
        movie.failing = fails ? "SetCurrentPosition" : "";
        EXPECT_EQ(seeks && reader->seek(0), seeks && !fails);
        EXPECT_EQ(reads && readSamples().size() == 2, reads);
        reader.reset();
        EXPECT_EQ(movie.calls, calls) << seeks << fails << reads;
        EXPECT_EQ(movie.readers, 0);
    }
}

TEST_F(MovieReader, that_was_moved_and_fails_to_move_again_still_ends_with_a_read) {
    movie.reads = {samplesRead(2)};
    ASSERT_TRUE(openSound());
    EXPECT_TRUE(reader->seek(0));
    movie.failing = "SetCurrentPosition";
    EXPECT_FALSE(reader->seek(0));
    reader.reset();
    EXPECT_EQ(movie.calls, 1u);
}

} // namespace
} // namespace corvina::test
