// The source of MP4 and AAC over the system's Media Foundation.

#include "DecodedFiles.h"
#include "Mp4Bytes.h"
#include "sources/MediaFoundationSource.h"

#include <algorithm>

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

TEST(MediaFoundationFiles, lossless_sound_in_an_mp4_file_comes_to_the_very_sample) {
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_GT(source.Bitrate(), 100'000);
    const Reading whole = readToEnd(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_TRUE(whole.bytes == samplesOf(L"tune.wav"));
}

TEST(MediaFoundationFiles, a_seek_lands_on_the_very_sample) {
    const Bytes whole = samplesOf(L"tune.wav");
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 0);
    for (const int second : {2, 0, 1}) {
        seekTo(source, second, SeekMode::seconds);
        EXPECT_NEAR(source.Position(), second * 1000, 1);
        EXPECT_FALSE(source.EndOfStream());
        EXPECT_TRUE(readToEnd(source).bytes ==
                    Bytes(whole.begin() + second * 176'400, whole.end()));
    }
    seekTo(source, 50, SeekMode::percent);
    EXPECT_THAT(readToEnd(source).bytes, SizeIs(whole.size() / 2));
}

TEST(MediaFoundationFiles, a_seek_out_of_range_returns_4) {
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 0);
    for (const auto& [value, by] : {std::pair{-1, 0}, std::pair{100, 0}, std::pair{-1, 1},
                                    std::pair{4, 1}, std::pair{0x7FFFFFFF, 1}}) {
        std::int32_t mode = by;
        EXPECT_EQ(source.SeekTo(value, mode), 4) << value;
    }
}

// As in a movie whose pictures go on for longer.
TEST(MediaFoundationFiles, a_seek_behind_the_end_of_the_sound_comes_to_the_end) {
    constexpr std::uint32_t milliseconds = 900;
    TempFolder folder;
    const std::wstring path = folder.write(
        L"longer.m4a", withNumber(fileBytes(mediaFile(L"clip.m4a")), "mvhd", 16, milliseconds));
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(path), 0);
    for (const auto& [value, by] :
         {std::pair{99, SeekMode::percent}, std::pair{50, SeekMode::percent},
          std::pair{1, SeekMode::seconds}}) {
        std::int32_t mode = by;
        const std::int32_t sought = source.SeekTo(value, mode);
        // A reader that goes by the sound has a shorter file.
        EXPECT_TRUE(sought == 0 || sought == 4) << sought;
        EXPECT_LT(readToEnd(source).bytes.size(), 8000u);
    }
    seekTo(source, 0, SeekMode::seconds);
    EXPECT_GT(readToEnd(source).bytes.size(), 6000u);
}

TEST(MediaFoundationFiles, an_aac_stream_plays_for_its_length) {
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.aac")), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    const double bytes = static_cast<double>(readToEnd(source).bytes.size());
    EXPECT_NEAR(bytes / 176'400, 3.0, 0.06);
}

TEST(MediaFoundationFiles, the_tags_are_those_of_the_files_list) {
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 0);
    for (const auto& tag : Tags{{L"title", L"Small Tune"},
                                {L"artist", L"Test Bench"},
                                {L"album", L"Media"},
                                {L"year", L"2024"},
                                {L"genre", L"Other"},
                                {L"tracknumber", L"3"},
                                {L"comment", L"made at test time"}})
        EXPECT_THAT(tagsOf(source), Contains(tag));
}

TEST(MediaFoundationFiles, a_closed_file_is_still_described) {
    MediaFoundationSource source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 0);
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_EQ(source.CloseSource(), 1);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_FALSE(tagsOf(source).empty());
    EXPECT_EQ(source.OpenSource(L"no such file.m4a"), 1);
    EXPECT_EQ(source.Duration(), 0);
}

TEST(MediaFoundationFiles, without_an_open_file_a_read_returns_5_and_a_seek_4) {
    MediaFoundationSource source;
    std::int32_t got = 7;
    std::int32_t mode = 0;
    char buffer[4];
    EXPECT_EQ(source.Read(buffer, 4, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(source.SeekTo(0, mode), 4);
    EXPECT_EQ(source.Position(), 0);
}

TEST(MediaFoundationFiles, what_is_no_media_file_returns_1) {
    TempFolder folder;
    MediaFoundationSource source;
    for (const Bytes& bytes : {Bytes{}, Bytes(10, 'x'), Bytes(5000, 'x')})
        EXPECT_EQ(source.OpenSource(folder.write(L"a.m4a", bytes)), 1);
}

TEST(MediaFoundationFiles, a_name_with_signs_of_addresses_opens) {
    TempFolder folder;
    MediaFoundationSource source;
    const Bytes bytes = fileBytes(mediaFile(L"tune.m4a"));
    for (const wchar_t* name : {L"50% #1 a+b.m4a", L"\u6771\u4EAC.m4a"}) {
        EXPECT_EQ(source.OpenSource(folder.write(name, bytes)), 0);
        EXPECT_EQ(source.CloseSource(), 0);
    }
}

LibraryApi withoutMediaFoundation() {
    LibraryApi api;
    api.loadLibrary = [](const char*) WINAPI -> HMODULE { return nullptr; };
    return api;
}

TEST(MediaFoundationFiles, without_the_system_library_an_open_returns_3) {
    const LibraryApi api = withoutMediaFoundation();
    MediaFoundationSource source(api);
    EXPECT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 3);
    EXPECT_EQ(source.OpenSource(mediaFile(L"tune.m4a")), 3);
    EXPECT_EQ(source.CloseSource(), 1);
}

// The system may do a seek on a thread of its own.
TEST(MediaFoundationFiles, a_reader_that_is_let_go_of_right_behind_a_seek_leaves_the_host_alive) {
    const auto library = std::make_shared<MediaFoundationLibrary>(systemLibraryApi);
    ASSERT_TRUE(library->start());
    for (int file = 0; file < 100; ++file) {
        MediaFoundationReader reader(library);
        ASSERT_TRUE(reader.open(mediaFile(L"tune.m4a")) && reader.selectSound());
        MediaFoundationReader::Block block;
        ASSERT_TRUE(reader.read(block));
        ASSERT_TRUE(reader.seek(file * 100'000));
    }
}

} // namespace
} // namespace corvina::test
