// The APE source over the decoder library and files of public tools.

#include "DecodedFiles.h"
#include "sources/DecAPE.h"

namespace corvina::test {
namespace {

TEST(ApeFiles, every_level_decodes_to_the_very_samples_that_were_encoded) {
    const Bytes samples = samplesOf(L"tune.wav");
    for (const wchar_t* name :
         {L"level-1.ape", L"level-2.ape", L"level-3.ape", L"level-4.ape", L"level-5.ape"}) {
        DecAPE source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        const Reading whole = readToEnd(source);
        EXPECT_EQ(whole.result, 5);
        EXPECT_TRUE(whole.bytes == samples) << name;
    }
}

TEST(ApeFiles, other_widths_and_channels_decode_to_the_samples_that_were_encoded) {
    for (const wchar_t* name : {L"mono", L"8bit", L"24bit"}) {
        DecAPE source;
        ASSERT_EQ(source.OpenSource(mediaFile(std::wstring(name) + L".ape")), 0);
        EXPECT_TRUE(readToEnd(source, 6 * 1000).bytes == samplesOf(std::wstring(name) + L".wav"))
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

TEST(ApeFiles, a_seek_to_the_end_is_followed_by_the_end) {
    expectEndBehindSeekToEnd<DecAPE>(L"tune.ape");
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

TEST(ApeFiles, format_and_position_are_reported) {
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

TEST(ApeFiles, names_that_the_code_page_lacks_and_long_paths_play) {
    expectSameUnderAnyName<DecAPE>(L"tune.ape", L".ape");
}

} // namespace
} // namespace corvina::test
