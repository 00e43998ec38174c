// The sources over the real libraries and files of public tools.

#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "support/BareDecoders.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using testing::SizeIs;

// The samples of a WAV file with the plain 44-byte header.
Bytes samplesOf(const std::wstring& wav) {
    const Bytes bytes = fileBytes(mediaFile(wav));
    return {bytes.begin() + 44, bytes.end()};
}

struct Reading {
    Bytes bytes;
    std::int32_t result = 0; // the last
    int holes = 0;           // negative counts
};

// Reads to the end, in pieces of that many bytes.
Reading readRest(cSoundSTRM& source, std::int32_t piece = 8000) {
    Reading reading;
    Bytes buffer(static_cast<std::size_t>(piece));
    for (int reads = 0; reading.result == 0 && reads < 100'000; ++reads) {
        std::int32_t got = 0;
        reading.result = source.Read(buffer.data(), piece, got);
        reading.holes += got < 0;
        if (got > 0)
            reading.bytes.insert(reading.bytes.end(), buffer.begin(), buffer.begin() + got);
    }
    return reading;
}

void seekTo(cSoundSTRM& source, std::int32_t value, std::int32_t mode) {
    EXPECT_EQ(source.SeekTo(value, mode), 0);
}

// From the start, and from every place a seek can reach, a source gives what its bare library
// gives.
template <typename Source, typename Bare>
void expectSameAsBare(const std::wstring& name) {
    const std::wstring path = mediaFile(name);
    Source source;
    ASSERT_EQ(source.OpenSource(path), 0);
    Bare bare(path);
    const Reading whole = readRest(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_GT(whole.bytes.size(), 1000u);
    EXPECT_TRUE(whole.bytes == test::readRest(bare)) << toAnsi(name).text;
    for (const std::int32_t seconds : {2, 0, 1}) {
        seekTo(source, seconds, 1);
        EXPECT_EQ(source.Position(), seconds * 1000);
        bare.seekSeconds(seconds);
        EXPECT_TRUE(readRest(source).bytes == test::readRest(bare)) << seconds;
    }
    seekTo(source, 50, 0);
    const Bytes half = readRest(source).bytes;
    EXPECT_EQ(half.size(), whole.bytes.size() / 2);
    EXPECT_TRUE(std::equal(half.rbegin(), half.rend(), whole.bytes.rbegin()));
}

// ---- Ogg Vorbis

TEST(OggFiles, stereo_decodes_as_the_bare_library_does) {
    expectSameAsBare<DecOGG, BareOgg>(L"tune.ogg");
}

TEST(OggFiles, mono_decodes_as_the_bare_library_does) {
    expectSameAsBare<DecOGG, BareOgg>(L"mono.ogg");
}

TEST(OggFiles, format_and_tags_are_told) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.ogg")), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_EQ(source.Bitrate(), 160000);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
    std::wstring tags;
    for (const StrmTag& tag : *source.Tags())
        tags += tag.TagName() + L"=" + tag.TagValue() + L";";
    EXPECT_EQ(tags, L"artist=Test Bench;album=Media;title=Small Tune;genre=Other;tracknumber=3;"
                    L"description=made at test time;");
}

TEST(OggFiles, a_lone_upper_case_title_is_one_tag_named_title) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"title.ogg")), 0);
    ASSERT_EQ(source.Tags()->TagCount(), 1);
    EXPECT_EQ(source.Tags()->TagItem(1).TagName(), L"title");
    EXPECT_EQ(source.Tags()->TagItem(1).TagValue(), L"Alone");
}

TEST(OggFiles, six_channels_are_refused) {
    DecOGG source;
    EXPECT_EQ(source.OpenSource(mediaFile(L"six.ogg")), 1);
}

TEST(OggFiles, what_is_refused_is_let_go_of) {
    TempFolder folder;
    const std::wstring six = folder.write(L"six.ogg", fileBytes(mediaFile(L"six.ogg")));
    const std::wstring garbage = folder.write(L"garbage.ogg", Bytes(1000, 'g'));
    DecOGG source;
    for (const std::wstring& path : {six, garbage}) {
        EXPECT_EQ(source.OpenSource(path), 1);
        EXPECT_TRUE(::DeleteFileW(path.c_str()));
    }
}

TEST(OggFiles, a_chain_of_links_plays_to_its_end) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"two-links.ogg")), 0);
    EXPECT_EQ(source.Duration(), 6000);
    EXPECT_EQ(source.Channels(), 2);
    const Reading whole = readRest(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_THAT(whole.bytes, SizeIs(132'300 * 4 + 132'300 * 2));
}

TEST(OggFiles, vorbis_beside_another_stream_is_found) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"beside.ogg")), 0);
    EXPECT_EQ(source.Channels(), 1);
    EXPECT_EQ(readRest(source).result, 5);
}

TEST(OggFiles, a_hole_is_reported_and_what_follows_still_plays) {
    Bytes bytes = fileBytes(mediaFile(L"tune.ogg"));
    for (std::size_t at = bytes.size() / 2; at < bytes.size() / 2 + 2000; ++at)
        bytes[at] = 0;
    TempFolder folder;
    DecOGG source;
    ASSERT_EQ(source.OpenSource(folder.write(L"hole.ogg", bytes)), 0);
    const Reading whole = readRest(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_GT(whole.holes, 0);
    EXPECT_GT(whole.bytes.size(), 132'300u);
    source.CloseSource();
}

TEST(OggFiles, a_file_that_is_no_vorbis_answers_1) {
    for (const wchar_t* name : {L"tune.wav", L"tune.mp3", L"tune.ape"})
        EXPECT_EQ(DecOGG().OpenSource(mediaFile(name)), 1) << name;
}

// Another program's handle would be closed if the file were closed twice.
TEST(OggFiles, closing_closes_the_file_exactly_once) {
    TempFolder folder;
    const std::wstring path = folder.write(L"a.ogg", fileBytes(mediaFile(L"tune.ogg")));
    for (int round = 0; round < 3; ++round) {
        DecOGG source;
        ASSERT_EQ(source.OpenSource(path), 0);
        FILE* const neighbour = _wfopen(folder.file(L"neighbour").c_str(), L"w+b");
        source.CloseSource();
        FILE* const successor = _wfopen(folder.file(L"successor").c_str(), L"w+b");
        source.CloseSource();
        EXPECT_EQ(std::fputs("still open", neighbour), 0);
        EXPECT_EQ(std::fputs("still open", successor), 0);
        EXPECT_EQ(std::fclose(neighbour), 0);
        EXPECT_EQ(std::fclose(successor), 0);
        EXPECT_NE(::DeleteFileW(path.c_str()), 0); // nobody holds it
        folder.write(L"a.ogg", fileBytes(mediaFile(L"tune.ogg")));
    }
}

TEST(OggFiles, hundreds_of_opens_of_good_and_bad_files_hold_no_more_handles) {
    TempFolder folder;
    const std::wstring bad = folder.write(L"bad.ogg", Bytes(100, 'x'));
    DecOGG source;
    DWORD before = 0;
    for (int round = 0; round < 300; ++round) {
        EXPECT_EQ(source.OpenSource(mediaFile(L"mono.ogg")), 0);
        EXPECT_EQ(source.OpenSource(bad), 1);
        EXPECT_EQ(source.OpenSource(mediaFile(L"six.ogg")), 1);
        source.CloseSource();
        DWORD now = 0;
        ::GetProcessHandleCount(::GetCurrentProcess(), &now);
        before = round <= 5 ? now : before;
        ASSERT_EQ(now, before);
    }
}

// ---- Monkey's Audio

TEST(ApeFiles, every_level_decodes_to_the_very_samples_that_were_encoded) {
    const Bytes samples = samplesOf(L"tune.wav");
    for (const wchar_t* name :
         {L"level-1.ape", L"level-2.ape", L"level-3.ape", L"level-4.ape", L"level-5.ape"}) {
        DecAPE source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        const Reading whole = readRest(source);
        EXPECT_EQ(whole.result, 5);
        EXPECT_TRUE(whole.bytes == samples) << name;
    }
}

TEST(ApeFiles, other_widths_and_channels_decode_to_the_samples_that_were_encoded) {
    for (const wchar_t* name : {L"mono", L"8bit", L"24bit"}) {
        DecAPE source;
        ASSERT_EQ(source.OpenSource(mediaFile(std::wstring(name) + L".ape")), 0);
        EXPECT_TRUE(readRest(source, 6 * 1000).bytes == samplesOf(std::wstring(name) + L".wav"))
            << name;
    }
}

TEST(ApeFiles, reading_and_seeking_is_as_the_bare_library_does) {
    for (const wchar_t* name : {L"level-1.ape", L"level-2.ape", L"level-3.ape", L"level-4.ape",
                                L"level-5.ape", L"mono.ape"})
        expectSameAsBare<DecAPE, BareApe>(name);
}

TEST(ApeFiles, every_seek_gives_the_samples_of_that_block) {
    const Bytes samples = samplesOf(L"tune.wav");
    DecAPE source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"level-1.ape")), 0);
    for (std::int32_t percent = 99; percent >= 0; percent -= 3) {
        seekTo(source, percent, 0);
        Bytes buffer(400);
        std::int32_t got = 0;
        ASSERT_EQ(source.Read(buffer.data(), 400, got), 0);
        const auto at = samples.begin() + percent * 1323 * 4;
        EXPECT_TRUE(std::equal(buffer.begin(), buffer.end(), at)) << percent;
    }
}

template <typename Source>
void expectEndBehindSeekToEnd(const std::wstring& name) {
    Source source;
    ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
    seekTo(source, 100, 0);
    char buffer[400];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 400, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
    seekTo(source, 0, 0);
    EXPECT_EQ(source.Read(buffer, 400, got), 0);
    EXPECT_GT(got, 0);

    seekTo(source, 100, 0);
    EXPECT_EQ(source.CloseSource(), 0);
    ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
    EXPECT_EQ(source.Read(buffer, 400, got), 0) << "an opened file begins at its start";
}

TEST(ApeFiles, a_seek_to_the_end_is_followed_by_the_end) {
    expectEndBehindSeekToEnd<DecAPE>(L"tune.ape");
}

TEST(OggFiles, a_seek_to_the_end_is_followed_by_the_end) {
    expectEndBehindSeekToEnd<DecOGG>(L"tune.ogg");
}

TEST(ApeFiles, a_tag_shows_and_goes_with_the_next_file) {
    Bytes tagged = fileBytes(mediaFile(L"tune.ape"));
    const std::string item{"\1\0\0\0\0\0\0\0Title\0x", 15};
    const std::string footer{"APETAGEX\xD0\x07\0\0\x2F\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 32};
    for (const std::string& part : {item, footer})
        tagged.insert(tagged.end(), part.begin(), part.end());
    TempFolder folder;
    DecAPE source;
    ASSERT_EQ(source.OpenSource(folder.write(L"tagged.ape", tagged)), 0);
    ASSERT_EQ(source.Tags()->TagCount(), 1);
    EXPECT_EQ(source.Tags()->TagItem(1).TagName(), L"Title");
    EXPECT_EQ(source.Tags()->TagItem(1).TagValue(), L"x");
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.ape")), 0);
    EXPECT_EQ(source.Tags()->TagCount(), 0);
}

TEST(ApeFiles, format_and_position_are_told) {
    DecAPE source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.ape")), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_NEAR(source.Bitrate(), 94360 * 8 / 3, 1000);
    EXPECT_EQ(source.Position(), 0);
    Bytes buffer(44100 * 4);
    std::int32_t got = 0;
    source.Read(buffer.data(), 44100 * 4, got);
    EXPECT_EQ(source.Position(), 1000);
    EXPECT_EQ(source.Tags()->TagCount(), 0);
}

TEST(ApeFiles, a_file_that_is_no_ape_opens_without_format) {
    DecAPE source;
    EXPECT_EQ(source.OpenSource(mediaFile(L"tune.ogg")), 0);
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_EQ(source.CloseSource(), 0);
}

// ---- libsndfile

TEST(SndFiles, every_format_decodes_as_the_bare_library_does) {
    for (const wchar_t* name : {L"tune.au", L"tune.snd", L"tune.aiff", L"tune.aifc", L"tune.voc",
                                L"mono16.voc", L"8bit.aiff", L"24bit.aiff", L"mulaw.au"})
        expectSameAsBare<DecSND, BareSnd>(name);
}

TEST(SndFiles, sixteen_bit_files_decode_to_the_very_samples_they_hold) {
    for (const wchar_t* name : {L"tune.au", L"tune.snd", L"tune.aiff", L"tune.aifc"}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_TRUE(readRest(source).bytes == samplesOf(L"tune.wav")) << name;
    }
}

TEST(SndFiles, eight_and_24_bit_files_say_16_bits_over_a_record_that_says_8_and_24) {
    for (const auto& [name, bits] : {std::pair{L"8bit.aiff", 8}, std::pair{L"24bit.aiff", 24}}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_EQ(source.BitsPerSample(), 16);
        EXPECT_EQ(source.WFXPointer()->wBitsPerSample, bits);
        EXPECT_EQ(source.WFXPointer()->nBlockAlign, bits / 8 * 2);
        EXPECT_THAT(readRest(source).bytes, SizeIs(132'300 * 4));
    }
}

TEST(SndFiles, a_vox_file_opens_by_its_extension_as_8000_hz_mono) {
    DecSND source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.vox")), 0);
    EXPECT_EQ(source.SampleRate(), 8000);
    EXPECT_EQ(source.Channels(), 1);
    BareSnd bare(mediaFile(L"tune.vox"));
    EXPECT_TRUE(readRest(source).bytes == test::readRest(bare));
}

TEST(SndFiles, a_file_that_the_library_does_not_know_answers_1) {
    TempFolder folder;
    EXPECT_EQ(DecSND().OpenSource(folder.write(L"a.aiff", Bytes(100, 'x'))), 1);
    EXPECT_EQ(DecSND().OpenSource(L"no such file.au"), 1);
}

// The library takes a file with these endings for bare samples if it has no header.
TEST(SndFiles, au_and_snd_files_without_a_header_open_as_8000_hz_mono) {
    TempFolder folder;
    for (const wchar_t* name : {L"a.au", L"a.snd"}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(folder.write(name, Bytes(100, 'x'))), 0);
        EXPECT_EQ(source.SampleRate(), 8000);
        EXPECT_THAT(readRest(source).bytes, SizeIs(200));
        source.CloseSource();
    }
}

} // namespace
} // namespace corvina::test
