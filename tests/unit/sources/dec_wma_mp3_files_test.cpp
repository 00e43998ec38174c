// Real files through the system's own reader.

#include "sources/DecWMAMP3.h"
#include "sources/MediaTime.h"
#include "support/BareReader.h"
#include "support/Media.h"
#include "support/RecordingReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>

namespace corvina {
namespace {

using namespace test;
using testing::Contains;
using testing::Pair;

using Tags = std::vector<std::pair<std::wstring, std::wstring>>;

struct ReadToEnd {
    std::int32_t lastResult = -1;
    std::vector<std::uint8_t> bytes;
};

ReadToEnd readToEnd(DecWMAMP3& source, std::int32_t piece) {
    ReadToEnd all;
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(piece));
    do {
        std::int32_t got = 0;
        all.lastResult = source.Read(buffer.data(), piece, got);
        all.bytes.insert(all.bytes.end(), buffer.begin(), buffer.begin() + got);
    } while (all.lastResult == 0);
    return all;
}

// How many times louder the first sound is than what the two differ by; 16-bit samples.
double likeness(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    double sound = 0;
    double difference = 1;
    for (std::size_t i = 0; i + 1 < std::min(a.size(), b.size()); i += 2) {
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::memcpy(&x, &a[i], sizeof x);
        std::memcpy(&y, &b[i], sizeof y);
        sound += static_cast<double>(x) * x;
        difference += static_cast<double>(x - y) * (x - y);
    }
    return std::sqrt(sound / difference);
}

// The decoder of WMA may fill noise in, different each time, so what it decodes twice is the same
// sound and not the same bytes. From another place the difference would be as loud as the sound
// itself.
void expectSameSound(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    EXPECT_FALSE(a.empty());
    EXPECT_EQ(a.size(), b.size());
    EXPECT_GT(likeness(a, b), 3);
}

class WindowsMediaFile : public testing::TestWithParam<const wchar_t*> {
protected:
    std::wstring file() const { return mediaFile(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Kinds, WindowsMediaFile,
                         testing::Values(L"tune.mp3", L"tune.wma", L"tune.wmv"),
                         [](const auto& kind) {
                             const std::wstring name(kind.param);
                             const std::wstring extension = name.substr(name.find(L'.') + 1);
                             return std::string(extension.begin(), extension.end());
                         });

TEST_P(WindowsMediaFile, it_is_delivered_byte_for_byte_as_the_reader_hands_it_out) {
    DecWMAMP3 source(recordingApi);
    for (const std::int32_t piece : {8000, 1, 1000003}) {
        handedOut.clear();
        ASSERT_EQ(source.OpenSource(file()), 0);
        const ReadToEnd all = readToEnd(source, piece);
        EXPECT_EQ(all.lastResult, 5);
        EXPECT_TRUE(source.EndOfStream());
        EXPECT_FALSE(all.bytes.empty());
        EXPECT_TRUE(all.bytes == handedOut) << all.bytes.size() << " of " << handedOut.size();
        ASSERT_EQ(source.CloseSource(), 0);
    }
}

TEST_P(WindowsMediaFile, it_sounds_as_the_bare_reader_decodes_it) {
    BareReader bare(file());
    ASSERT_TRUE(bare.opened());
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    expectSameSound(bare.rest(), readToEnd(source, 8000).bytes);
}

TEST(WindowsMediaFiles, mp3_is_byte_for_byte_what_the_bare_reader_decodes) {
    BareReader bare(mediaFile(L"tune.mp3"));
    ASSERT_TRUE(bare.opened());
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.mp3")), 0);
    EXPECT_TRUE(readToEnd(source, 8000).bytes == bare.rest());
}

TEST(WindowsMediaFiles, of_a_wmv_file_with_pictures_only_the_sound_comes) {
    DecWMAMP3 source(recordingApi);
    handedOut.clear();
    ASSERT_EQ(source.OpenSource(mediaFile(L"pictures.wmv")), 0);
    EXPECT_NEAR(source.Bitrate(), 328000, 1000);
    const ReadToEnd all = readToEnd(source, 8000);
    EXPECT_TRUE(all.bytes == handedOut);
    // The same sound in a file without pictures.
    const std::vector<std::uint8_t> sound = BareReader(mediaFile(L"tune.wmv")).rest();
    EXPECT_NEAR(static_cast<double>(all.bytes.size()), static_cast<double>(sound.size()), 8000);
    EXPECT_GT(likeness(all.bytes, sound), 3);
}

TEST(WindowsMediaFiles, of_a_wmv_file_with_pictures_only_the_sound_comes_after_a_seek) {
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"pictures.wmv")), 0);
    std::int32_t mode = SeekMode::seconds;
    ASSERT_EQ(source.SeekTo(1, mode), 0);
    EXPECT_NEAR(static_cast<double>(readToEnd(source, 8000).bytes.size()), 2.0 * 44100 * 4, 20'000);
}

TEST_P(WindowsMediaFile, its_format_is_that_of_the_tune) {
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
    EXPECT_NEAR(source.Duration(), 3000, 200);
    EXPECT_NEAR(source.Bitrate(), 128000, 8000);
    EXPECT_EQ(source.Position(), 0);
}

TEST_P(WindowsMediaFile, its_tags_show) {
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    Tags tags;
    for (const StrmTag& tag : *source.Tags())
        tags.emplace_back(tag.TagName(), tag.TagValue());
    EXPECT_THAT(tags, Contains(Pair(L"title", L"Small Tune")));
    EXPECT_THAT(tags, Contains(Pair(L"artist", L"Test Bench")));
    EXPECT_THAT(tags, Contains(Pair(L"album", L"Media")));
    EXPECT_THAT(tags, Contains(Pair(L"genre", L"Other")));
    EXPECT_THAT(tags, Contains(Pair(L"year", L"2024")));
    EXPECT_THAT(tags, Contains(Pair(L"tracknumber", L"3")));
    EXPECT_THAT(tags, Contains(Pair(L"comment", L"made at test time")));
}

// The exact duration as the reader reports it.
QWORD durationOf(const BareReader& bare) {
    const ComPtr<IWMHeaderInfo> header(
        ComPtr<IWMSyncReader>(&bare.reader()).query<IWMHeaderInfo>());
    WORD stream = 0;
    WMT_ATTR_DATATYPE type = WMT_TYPE_QWORD;
    QWORD duration = 0;
    WORD length = sizeof duration;
    EXPECT_EQ(header->GetAttributeByName(&stream, L"Duration", &type,
                                         reinterpret_cast<BYTE*>(&duration), &length),
              S_OK);
    return duration;
}

TEST_P(WindowsMediaFile, a_seek_continues_as_the_bare_reader_does_from_there) {
    BareReader bare(file());
    ASSERT_TRUE(bare.opened());
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    for (const std::int32_t second : {2, 0, 1}) {
        const double percent = second / (source.Duration() / 1000.0) * 100;
        ASSERT_EQ(bare.reader().SetRange(mediaTimeAtPercent(durationOf(bare), percent), 0), S_OK);
        std::int32_t mode = SeekMode::seconds;
        ASSERT_EQ(source.SeekTo(second, mode), 0);
        EXPECT_NEAR(source.Position(), second * 1000, 100);
        expectSameSound(bare.rest(), readToEnd(source, 8000).bytes);
    }
}

TEST_P(WindowsMediaFile, the_position_follows_the_readers_blocks) {
    BareReader bare(file());
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    std::vector<std::uint8_t> block;
    while (bare.next([&](const BYTE* data, DWORD length) { block.assign(data, data + length); })) {
        std::int32_t got = 0;
        (void)source.Read(block.data(), static_cast<std::int32_t>(block.size()), got);
        EXPECT_NEAR(source.Position(), static_cast<double>(bare.time()) / 10'000, 0.5);
    }
}

TEST_P(WindowsMediaFile, it_opens_again_after_closing_and_starts_over) {
    DecWMAMP3 source;
    ASSERT_EQ(source.OpenSource(file()), 0);
    const ReadToEnd first = readToEnd(source, 8000);
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_FALSE(source.EndOfStream());
    ASSERT_EQ(source.OpenSource(file()), 0);
    expectSameSound(first.bytes, readToEnd(source, 8000).bytes);
}

TEST_P(WindowsMediaFile, two_sources_play_it_at_once) {
    DecWMAMP3 one;
    DecWMAMP3 other;
    ASSERT_EQ(one.OpenSource(file()), 0);
    ASSERT_EQ(other.OpenSource(file()), 0);
    expectSameSound(readToEnd(one, 8000).bytes, readToEnd(other, 5000).bytes);
}

TEST(WindowsMediaFiles, a_file_that_does_not_exist_returns_1) {
    DecWMAMP3 source;
    EXPECT_EQ(source.OpenSource(mediaFile(L"none.mp3")), 1);
    EXPECT_EQ(source.OpenSource(L""), 1);
    EXPECT_EQ(source.CloseSource(), 1);
}

TEST(WindowsMediaFiles, after_a_failed_open_a_good_file_opens) {
    DecWMAMP3 source;
    EXPECT_EQ(source.OpenSource(mediaFile(L"none.mp3")), 1);
    EXPECT_EQ(source.OpenSource(mediaFile(L"tune.mp3")), 0);
}

} // namespace
} // namespace corvina
