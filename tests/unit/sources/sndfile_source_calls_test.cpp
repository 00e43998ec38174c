// What SndfileSource asks of libsndfile, and what it makes of it.

#include "SndfileSourceFixture.h"

#include "support/GuardedNew.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(SndfileSourceCalls, an_opened_file_is_clipped_and_asked_for_its_texts) {
    SndfileSource source(StandIns::api());
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(openedPath, path);
    const auto text = [](std::int32_t type) { return Call{"sf_get_string", {handle, type}}; };
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_wchar_open", {16}}, Call{"sf_command", {handle, 0x10C0, 0, 1}},
                            text(1), text(4), text(7), text(6), text(16), text(9), text(5)));
}

TEST_F(SndfileSourceCalls, texts_of_the_library_are_tags_and_empty_ones_are_none) {
    results.texts = {{1, "a title"},  {4, "an artist"}, {5, "a comment"},   {6, "2024"},
                     {7, "an album"}, {9, ""},          {16, "J\xC3\xA4zz"}};
    std::wstring all;
    for (const StrmTag& tag : *opened().Tags())
        all += tag.TagName() + L"=" + tag.TagValue() + L";";
    EXPECT_EQ(all, L"title=a title;artist=an artist;album=an album;year=2024;genre=J\u00E4zz;"
                   L"comment=a comment;");
    results.texts = {{9, "12"}};
    const StrmTags& tags = *opened().Tags();
    ASSERT_EQ(tags.TagCount(), 1);
    EXPECT_EQ(tags.TagItem(1).TagName(), L"tracknumber");
}

TEST_F(SndfileSourceCalls, a_destroyed_source_closes_its_file) {
    {
        SndfileSource source(StandIns::api());
        source.OpenSource(path);
        libraries.calls.clear();
    }
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_close", {handle}}));
}

TEST_F(SndfileSourceCalls, another_open_closes_the_file_before_first) {
    SndfileSource& source = opened();
    EXPECT_EQ(source.OpenSource(path), 0);
    ASSERT_GE(libraries.calls.size(), 2u);
    EXPECT_EQ(libraries.calls[0], (Call{"sf_close", {handle}}));
    EXPECT_EQ(libraries.calls[1], (Call{"sf_wchar_open", {16}}));
}

TEST_F(SndfileSourceCalls, one_channel_and_64_and_one_frame_a_second_are_played) {
    results.info.channels = 1;
    EXPECT_EQ(opened().Channels(), 1);
    results.info.channels = 64;
    EXPECT_EQ(opened().Channels(), 2);
    results.info.sampleRate = 1;
    EXPECT_EQ(opened().SampleRate(), 1);
}

TEST_F(SndfileSourceCalls, a_long_name_goes_to_the_library_as_the_system_takes_it) {
    const std::wstring name = L"C:\\" + std::wstring(300, L'a') + L".flac";
    SndfileSource source(StandIns::api());
    EXPECT_EQ(source.OpenSource(name), 0);
    EXPECT_EQ(openedPath, L"\\\\?\\" + name);
}

TEST_F(SndfileSourceCalls, the_name_of_a_device_is_no_file) {
    SndfileSource source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"C:\\music\\aux.flac"), 1);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(SndfileSourceCalls, a_file_without_channels_or_a_possible_rate_returns_12_and_is_closed) {
    for (const auto& [channels, rate] :
         {std::pair{0, 1000}, std::pair{-1, 1000}, std::pair{65, 1000}, std::pair{2, 0},
          std::pair{2, 0x7FFFFFFF}, std::pair{1, 0x40000000}}) {
        results.info.channels = channels;
        results.info.sampleRate = rate;
        libraries.calls.clear();
        SndfileSource source(StandIns::api());
        EXPECT_EQ(source.OpenSource(path), 12) << channels;
        EXPECT_THAT(libraries.calls,
                    ElementsAre(Call{"sf_wchar_open", {16}}, Call{"sf_close", {handle}}));
        EXPECT_EQ(source.CloseSource(), 1);
        EXPECT_FALSE(source.Seekable()) << "nothing is left of what the library said";
        EXPECT_EQ(source.Duration(), 0);
    }
}

TEST_F(SndfileSourceCalls, an_open_that_fails_forgets_the_file_before) {
    results.texts = {{1, "a title"}};
    SndfileSource& source = opened();
    EXPECT_EQ(source.Bitrate(), 1000) << "1000 bytes in 8 s";
    EXPECT_TRUE(source.Seekable());
    results.delivers = 0;
    EXPECT_EQ(read(source, 400).result, 5);
    EXPECT_TRUE(source.EndOfStream());
    results.opens = false;
    EXPECT_EQ(source.OpenSource(path), 1);
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.Channels(), 0);
    EXPECT_EQ(source.Bitrate(), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_FALSE(source.Seekable());
    EXPECT_EQ(source.Tags()->TagCount(), 0);
}

TEST_F(SndfileSourceCalls, a_file_opened_after_another_begins_at_its_start) {
    SndfileSource& source = opened();
    EXPECT_EQ(read(source, 4000).result, 0);
    EXPECT_EQ(source.Position(), 1000);
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(source.Position(), 0);
    results.info.framesLow = 0xFFFFFFFF; // of a file without a length
    results.info.framesHigh = 0x7FFFFFFF;
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(source.Duration(), 0);
    EXPECT_EQ(source.Bitrate(), 0);
}

TEST_F(SndfileSourceCalls, reading_asks_for_whole_frames) {
    SndfileSource& source = opened();
    const Reading reading = read(source, 11);
    EXPECT_EQ(reading.result, 0);
    EXPECT_THAT(reading.samples, ElementsAre(100, -200, 100, -200));
    EXPECT_THAT(libraries.taken(), ElementsAre(Call{"sf_readf_short", {handle, 2, 0}}));
    EXPECT_EQ(source.Position(), 2);
    for (const std::int32_t bytes : {0, -1, -8}) {
        std::int16_t untouched = 77;
        std::int32_t got = 7;
        EXPECT_EQ(source.Read(&untouched, bytes, got), 0) << bytes;
        EXPECT_EQ(got, 0);
        EXPECT_EQ(untouched, 77);
    }
    EXPECT_THAT(libraries.calls, Each(Call{"sf_readf_short", {handle, 0, 0}}));
}

TEST_F(SndfileSourceCalls, the_end_comes_with_the_last_frame_or_with_fewer_than_asked) {
    results.info.framesLow = 10;
    SndfileSource& source = opened();
    EXPECT_EQ(read(source, 9 * 4).result, 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(read(source, 4).result, 0);
    EXPECT_TRUE(source.EndOfStream());
    results.delivers = 3;
    SndfileSource& cut = opened();
    const Reading reading = read(cut, 4 * 4);
    EXPECT_EQ(reading.result, 5);
    EXPECT_EQ(reading.samples.size(), 6u);
    EXPECT_TRUE(cut.EndOfStream());
}

TEST_F(SndfileSourceCalls, a_file_of_one_frame_ends_with_it) {
    results.info.framesLow = 1;
    results.info.sampleRate = 1;
    SndfileSource& source = opened();
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(read(source, 4).result, 0);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(seekTo(source, 0, SeekMode::seconds), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(seekTo(source, 1, SeekMode::seconds), 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(SndfileSourceCalls, a_file_without_a_length_ends_only_when_nothing_comes) {
    results.info.framesLow = 0;
    SndfileSource& source = opened();
    EXPECT_EQ(read(source, 400).result, 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(seekTo(source, 0, SeekMode::percent), 0);
    EXPECT_FALSE(source.EndOfStream());
    results.delivers = 0;
    EXPECT_EQ(read(source, 400).result, 5);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(SndfileSourceCalls, floating_point_samples_are_clipped_and_no_number_is_silence) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, std::int16_t> samples[] = {
        {0.0F, 0},     {0.5F, 16384},  {-0.5F, -16384}, {32766.0F / 32768, 32766},
        {1.0F, 32767}, {7.5F, 32767},  {-1.0F, -32768}, {-7.5F, -32768},
        {none, 0},     {1e30F, 32767}, {-1e30F, -32768}};
    for (const std::int32_t format : {floats, doubles}) {
        results.info.format = format;
        results.info.channels = 1;
        for (const auto& [value, expected] : samples) {
            results.floatFrame = {value};
            EXPECT_THAT(read(opened(), 2).samples, ElementsAre(expected)) << value;
        }
        EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_readf_float", {handle, 1, 0}}));
    }
}

TEST_F(SndfileSourceCalls, a_read_that_the_library_fails_gives_nothing_and_is_the_end) {
    for (const std::int32_t format : {flac, floats})
        for (const std::int32_t delivered : {0, -1}) {
            results.info.format = format;
            results.delivers = delivered;
            SndfileSource& source = opened();
            const Reading reading = read(source, 40);
            EXPECT_EQ(reading.result, 5);
            EXPECT_THAT(reading.samples, IsEmpty());
            EXPECT_EQ(source.Position(), 0);
        }
}

// The rate that a damaged header names decides how much is read at a time.
TEST_F(SndfileSourceCalls, what_is_mixed_down_takes_little_memory_however_much_is_read) {
    constexpr std::int32_t frames = 100'000;
    for (const std::int32_t format : {flac, floats}) {
        results.info.format = format;
        results.info.channels = 64;
        results.frame.assign(64, 8192);
        results.floatFrame.assign(64, 0.25F);
        SndfileSource& source = opened();
        std::vector<std::int16_t> samples(std::size_t{frames} * 2);
        (void)takeLargestBlock();
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(samples.data(), frames * 4, got), 0);
        EXPECT_LE(takeLargestBlock(), std::size_t{4} << 20);
        EXPECT_EQ(got, frames * 4);
        EXPECT_EQ(std::count(samples.begin(), samples.end(), 8192), frames * 2);
        results.delivers = 10;
        EXPECT_EQ(source.Read(samples.data(), frames * 4, got), 5);
        EXPECT_EQ(got, 40);
        results.delivers = everything;
    }
}

TEST_F(SndfileSourceCalls, the_speakers_of_more_than_two_channels_are_those_of_the_map) {
    results.map = {{3, 2, 4}};
    EXPECT_THAT(sidesOfAll(3), ElementsAre("R", "L", "LR"));
    results.info.channels = 3;
    SndfileSource source(StandIns::api());
    ASSERT_EQ(source.OpenSource(path), 0);
    EXPECT_THAT(libraries.calls, Contains(Call{"sf_command", {handle, 0x1100, 1, 12}}));
    results.map.reset(); // the usual order
    EXPECT_THAT(sidesOfAll(3), ElementsAre("L", "R", "LR"));
}

TEST_F(SndfileSourceCalls, every_speaker_of_the_map_is_heard_at_its_side) {
    constexpr std::int32_t low = 11;
    const std::vector<std::string> expected = {"LR", "LR", "L", "R",  "LR", "L", "R",  "LR",
                                               "LR", "L",  "R", "",   "L",  "R", "L",  "R",
                                               "LR", "L",  "R", "LR", "L",  "R", "LR", "LR"};
    for (std::int32_t number = 0; number < static_cast<std::int32_t>(expected.size()); ++number) {
        results.map = {{number, low, low}};
        EXPECT_EQ(sidesOf(0, 3), expected[static_cast<std::size_t>(number)]) << number;
    }
    for (const std::int32_t unknown : {-1, everything, -everything - 1}) {
        results.map = {{unknown, low, low}};
        EXPECT_EQ(sidesOf(0, 3), "LR") << unknown;
    }
}

TEST_F(SndfileSourceCalls, a_speaker_of_the_map_in_the_middle_is_softer_behind_than_in_front) {
    constexpr std::int32_t front = 4;
    constexpr std::int32_t behind = 8;
    constexpr std::int32_t low = 11;
    results.info.channels = 3;
    results.frame = {10'000, 0, 0};
    results.map = {{front, low, low}};
    EXPECT_THAT(read(opened(), 4).samples, ElementsAre(7071, 7071));
    results.map = {{behind, low, low}};
    EXPECT_THAT(read(opened(), 4).samples, ElementsAre(5000, 5000));
}

TEST_F(SndfileSourceCalls, ogg_has_an_order_of_its_own_up_to_eight_channels) {
    results.info.format = ogg;
    EXPECT_THAT(sidesOfAll(3), ElementsAre("L", "LR", "R"));
    EXPECT_THAT(sidesOfAll(4), ElementsAre("L", "R", "L", "R"));
    EXPECT_THAT(sidesOfAll(6), ElementsAre("L", "LR", "R", "L", "R", ""));
    EXPECT_THAT(sidesOfAll(8), ElementsAre("L", "LR", "R", "L", "R", "L", "R", ""));
    results.map = {{2, 3, 2, 3, 2, 3, 2, 3, 2}};
    EXPECT_THAT(sidesOfAll(9), ElementsAre("L", "R", "L", "R", "L", "R", "L", "R", "L"));
}

TEST_F(SndfileSourceCalls, a_seek_goes_to_the_frame_and_decodes_nothing_before_it) {
    results.info.sampleRate = 1'000'000;
    results.info.framesLow = 150;
    results.info.framesHigh = 1; // 4294.967446 s
    SndfileSource& source = opened();
    EXPECT_EQ(seekTo(source, 2000, SeekMode::seconds), 0);
    EXPECT_EQ(source.Position(), 2'000'000);
    EXPECT_EQ(seekTo(source, 99, SeekMode::percent), 0);
    constexpr std::uint32_t at99 = 4'252'017'771; // of 4,294,967,446
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_seek", {handle, 2'000'000'000, 0, 0}},
                            Call{"sf_seek", {handle, static_cast<std::int32_t>(at99), 0, 0}}));
}

TEST_F(SndfileSourceCalls, a_percentage_leads_to_the_whole_frame_before_it) {
    results.info.framesLow = 199;
    SndfileSource& source = opened();
    EXPECT_EQ(seekTo(source, 99, SeekMode::percent), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 197, 0, 0}}));
}

TEST_F(SndfileSourceCalls, mpeg_audio_is_decoded_from_eight_frames_before_the_place) {
    for (const std::int32_t format : {0x230080, 0x230081, 0x230082}) {
        results.info.format = format;
        results.info.sampleRate = 32000;
        results.info.framesLow = 320'000;
        SndfileSource& source = opened();
        EXPECT_EQ(seekTo(source, 1, SeekMode::seconds), 0);
        EXPECT_EQ(seekTo(source, 0, SeekMode::seconds), 0);
        EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 32000 - 9216, 0, 0}},
                                                 Call{"sf_readf_short", {handle, 9216, 0}},
                                                 Call{"sf_seek", {handle, 0, 0, 0}}));
    }
}

TEST_F(SndfileSourceCalls, a_seek_that_the_library_refuses_returns_4_and_changes_nothing) {
    SndfileSource& source = opened();
    EXPECT_EQ(seekTo(source, 3, SeekMode::seconds), 0);
    results.seeks = false;
    EXPECT_EQ(seekTo(source, 5, SeekMode::seconds), 4);
    EXPECT_EQ(seekTo(source, 9, SeekMode::seconds), 4) << "behind the end";
    EXPECT_EQ(source.Position(), 3000);
}

TEST_F(SndfileSourceCalls, it_is_seekable_as_far_as_the_library_says_so) {
    EXPECT_TRUE(opened().Seekable());
    results.info.seekable = 0;
    EXPECT_FALSE(opened().Seekable());
}

} // namespace
} // namespace corvina::test
