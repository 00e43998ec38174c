// The source of FLAC, Opus and more over the real library and files of public tools.

#include "DecodedFiles.h"
#include "sources/SndfileSource.h"
#include "support/StandIns.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace corvina::test {
namespace {

using testing::Contains;
using testing::SizeIs;

using Tags = std::vector<std::pair<std::wstring, std::wstring>>;

Tags tagsOf(cSoundSTRM& source) {
    Tags tags;
    for (const StrmTag& tag : *source.Info().Tags())
        tags.emplace_back(tag.TagName(), tag.TagValue());
    return tags;
}

std::vector<std::int16_t> samples(const Bytes& bytes) {
    std::vector<std::int16_t> result(bytes.size() / 2);
    std::memcpy(result.data(), bytes.data(), result.size() * 2);
    return result;
}

// Of 16-bit samples.
int largestDifference(const Bytes& a, const Bytes& b) {
    EXPECT_EQ(a.size(), b.size());
    const std::vector<std::int16_t> x = samples(a);
    const std::vector<std::int16_t> y = samples(b);
    int largest = 0;
    for (std::size_t index = 0; index < std::min(x.size(), y.size()); ++index)
        largest = std::max(largest, std::abs(x[index] - y[index]));
    return largest;
}

TEST(SndfileSourceFiles, flac_decodes_to_the_very_samples_also_in_ogg) {
    for (const wchar_t* name : {L"tune.flac", L"tune.oga"}) {
        SndfileSource source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_EQ(source.SampleRate(), 44100);
        EXPECT_EQ(source.Channels(), 2);
        EXPECT_EQ(source.BitsPerSample(), 16);
        EXPECT_EQ(source.Duration(), 3000);
        const Reading whole = readToEnd(source);
        EXPECT_EQ(whole.result, 5);
        EXPECT_TRUE(source.EndOfStream());
        EXPECT_TRUE(whole.bytes == samplesOf(L"tune.wav")) << name;
    }
}

TEST(SndfileSourceFiles, a_seek_lands_on_the_very_sample) {
    const Bytes whole = samplesOf(L"tune.wav");
    for (const wchar_t* name : {L"tune.flac", L"tune.oga"}) {
        SndfileSource source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        for (const int second : {2, 0, 1}) {
            seekTo(source, second, SeekMode::seconds);
            EXPECT_EQ(source.Position(), second * 1000);
            EXPECT_FALSE(source.EndOfStream());
            EXPECT_TRUE(readToEnd(source).bytes ==
                        Bytes(whole.begin() + second * 176'400, whole.end()));
        }
        seekTo(source, 50, SeekMode::percent);
        EXPECT_THAT(readToEnd(source).bytes, SizeIs(whole.size() / 2));
    }
}

TEST(SndfileSourceFiles, a_seek_out_of_range_returns_4_and_changes_nothing) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.flac")), 0);
    seekTo(source, 1, SeekMode::seconds);
    for (const auto& [value, by] : {std::pair{-1, 0}, std::pair{100, 0}, std::pair{-1, 1},
                                    std::pair{4, 1}, std::pair{0x7FFFFFFF, 1}}) {
        std::int32_t mode = by;
        EXPECT_EQ(source.SeekTo(value, mode), 4) << value;
    }
    EXPECT_EQ(source.Position(), 1000);
    EXPECT_THAT(readToEnd(source).bytes, SizeIs(2 * 176'400));
}

TEST(SndfileSourceFiles, floats_come_at_their_own_level) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"float.caf")), 0);
    EXPECT_LE(largestDifference(readToEnd(source).bytes, samplesOf(L"tune.wav")), 1);
}

TEST(SndfileSourceFiles, opus_is_the_tune_at_48000_hz) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.opus")), 0);
    EXPECT_EQ(source.SampleRate(), 48000);
    EXPECT_EQ(source.Duration(), 3000);
    const Bytes whole = readToEnd(source).bytes;
    EXPECT_THAT(whole, SizeIs(3 * 192'000));
    seekTo(source, 1, SeekMode::seconds);
    EXPECT_LE(
        largestDifference(readToEnd(source).bytes, Bytes(whole.begin() + 192'000, whole.end())), 1);
}

TEST(SndfileSourceFiles, tags_have_the_names_of_the_other_sources) {
    for (const wchar_t* name : {L"tune.flac", L"tune.opus"}) {
        SndfileSource source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        for (const auto& tag : Tags{{L"title", L"Small Tune"},
                                    {L"artist", L"Test Bench"},
                                    {L"album", L"Media"},
                                    {L"year", L"2024"},
                                    {L"genre", L"Other"}})
            EXPECT_THAT(tagsOf(source), Contains(tag)) << name;
    }
}

// All sound is at the front left, at the level that a mix of six channels leaves it; what is in the
// channel for low frequencies is not heard.
TEST(SndfileSourceFiles, six_channels_are_mixed_down_to_stereo) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"six.flac")), 0);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
    const std::vector<std::int16_t> mixed = samples(readToEnd(source).bytes);
    const std::vector<std::int16_t> mono = samples(samplesOf(L"mono.wav"));
    ASSERT_EQ(mixed.size(), 2 * mono.size());
    const double level = 1 / (1 + std::sqrt(2.0));
    for (std::size_t index = 0; index < mono.size(); ++index) {
        ASSERT_NEAR(mixed[2 * index], mono[index] * level, 1) << index;
        ASSERT_EQ(mixed[2 * index + 1], 0) << index;
    }
}

TEST(SndfileSourceFiles, vorbis_of_six_channels_plays_as_stereo) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"six.ogg")), 0);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_THAT(readToEnd(source).bytes, SizeIs(132'300 * 4));
}

TEST(SndfileSourceFiles, a_name_that_the_code_page_lacks_opens) {
    TempFolder folder;
    SndfileSource source;
    EXPECT_EQ(
        source.OpenSource(folder.write(L"\u6771\u4EAC.flac", fileBytes(mediaFile(L"tune.flac")))),
        0);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST(SndfileSourceFiles, mpeg_audio_behind_an_id3_tag_plays_with_its_length_and_tags) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.mp3")), 0);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_THAT(tagsOf(source),
                Contains(std::pair<std::wstring, std::wstring>(L"title", L"Small Tune")));
    const Reading whole = readToEnd(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_THAT(whole.bytes, SizeIs(132'300 * 4));
    for (const std::int32_t seconds : {2, 0, 1}) {
        seekTo(source, seconds, SeekMode::seconds);
        EXPECT_LE(
            largestDifference(readToEnd(source).bytes,
                              Bytes(whole.bytes.begin() + seconds * 176'400, whole.bytes.end())),
            1)
            << seconds;
    }
}

// The decoder once never came back from a text with a description.
TEST(SndfileSourceFiles, mpeg_audio_behind_a_damaged_tag_opens_or_is_refused_at_once) {
    const Bytes file = fileBytes(mediaFile(L"short.mp3"));
    TempFolder folder;
    int opened = 0;
    for (std::size_t at = 3; at < 190; ++at) {
        Bytes damaged = file;
        damaged[at] ^= 0xA5;
        SndfileSource source;
        if (source.OpenSource(folder.write(L"damaged.mp3", damaged)) != 0)
            continue;
        ++opened;
        EXPECT_EQ(readToEnd(source).result, 5) << at;
    }
    EXPECT_GT(opened, 150);
}

TEST(SndfileSourceFiles, the_length_of_mpeg_audio_is_counted_without_its_tags) {
    Bytes file = fileBytes(mediaFile(L"half-minute.mp3"));
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"half-minute.mp3")), 0);
    const std::int32_t duration = source.Duration();
    EXPECT_NEAR(duration, 30'000, 60);
    Bytes tag{'I', 'D', '3', 4, 0, 0, 0, 8, 0, 0}; // 128 KB of padding
    tag.resize(10 + (8u << 14), 0);
    file.insert(file.begin(), tag.begin(), tag.end());
    TempFolder folder;
    ASSERT_EQ(source.OpenSource(folder.write(L"padded.mp3", file)), 0);
    EXPECT_NEAR(source.Duration(), duration, 60);
}

TEST(SndfileSourceFiles, the_tag_of_mpeg_audio_is_found_behind_other_bytes) {
    const Bytes tagged = fileBytes(mediaFile(L"tune.mp3"));
    TempFolder folder;
    SndfileSource source;
    for (const std::size_t count : {1u, 700u, 3000u, 60'000u}) {
        for (const wchar_t* name : {L"a.mp3", L"a.mp2"}) {
            Bytes bytes(count, 'x');
            bytes.insert(bytes.end(), tagged.begin(), tagged.end());
            ASSERT_EQ(source.OpenSource(folder.write(name, bytes)), 0) << count;
            EXPECT_EQ(source.Duration(), 3000);
            // Only the tag in front of the sound has it so, the one behind has no genre.
            EXPECT_THAT(tagsOf(source),
                        Contains(std::pair<std::wstring, std::wstring>(L"genre", L"Other")))
                << count;
            EXPECT_THAT(readToEnd(source).bytes, SizeIs(132'300 * 4));
            EXPECT_EQ(source.CloseSource(), 0);
        }
    }
}

TEST(SndfileSourceFiles, mpeg_audio_in_front_of_a_tag_is_not_passed_over) {
    const Bytes sound = fileBytes(mediaFile(L"clip.mp3"));
    const Bytes tag{'I', 'D', '3', 4, 0, 0, 0, 0, 0, 0};
    TempFolder folder;
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"clip.mp3")), 0);
    const std::size_t once = readToEnd(source).bytes.size();
    ASSERT_GT(once, 0u);
    for (const std::size_t count : {0u, 500u}) {
        Bytes bytes(count, 'x');
        for (const Bytes& part : {sound, tag, sound})
            bytes.insert(bytes.end(), part.begin(), part.end());
        ASSERT_EQ(source.OpenSource(folder.write(L"joined.mp3", bytes)), 0);
        EXPECT_THAT(readToEnd(source).bytes, SizeIs(2 * once)) << count;
        EXPECT_EQ(source.CloseSource(), 0);
    }
}

TEST(SndfileSourceFiles, a_closed_file_is_still_described) {
    SndfileSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.flac")), 0);
    seekTo(source, 2, SeekMode::seconds);
    EXPECT_GT(source.Bitrate(), 100'000);
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_EQ(source.Position(), 2000);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_FALSE(tagsOf(source).empty());
    EXPECT_EQ(source.OpenSource(L"no such file.flac"), 1);
    EXPECT_EQ(source.Duration(), 0);
    EXPECT_TRUE(tagsOf(source).empty());
}

TEST(SndfileSourceFiles, without_an_open_file_close_read_and_seek_return_1) {
    SndfileSource source;
    std::int32_t got = 7;
    std::int32_t mode = 0;
    char buffer[4];
    EXPECT_EQ(source.CloseSource(), 1);
    EXPECT_EQ(source.Read(buffer, 4, got), 1);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(source.SeekTo(0, mode), 1);
    EXPECT_EQ(source.Duration(), 0);
    EXPECT_EQ(source.Position(), 0);
}

TEST(SndfileSourceFiles, without_the_library_everything_returns_3) {
    const StandIns none;
    const LibraryApi api = none.api();
    SndfileSource source(api);
    std::int32_t got = 7;
    std::int32_t mode = 0;
    char buffer[4];
    EXPECT_EQ(source.OpenSource(mediaFile(L"tune.flac")), 3);
    EXPECT_EQ(source.CloseSource(), 3);
    EXPECT_EQ(source.Read(buffer, 4, got), 3);
    EXPECT_EQ(source.SeekTo(0, mode), 3);
}

} // namespace
} // namespace corvina::test
