// The libsndfile source over the real library and files of public tools.

#include "DecodedFiles.h"
#include "sources/DecSND.h"

#include <array>

namespace corvina::test {
namespace {

using testing::SizeIs;

TEST(SndFiles, every_format_decodes_as_the_bare_library_does) {
    for (const wchar_t* name : {L"tune.au", L"tune.snd", L"tune.aiff", L"tune.aifc", L"tune.voc",
                                L"mono16.voc", L"8bit.aiff", L"24bit.aiff", L"mulaw.au"})
        expectSameAsBare<DecSND, BareSnd>(name);
}

TEST(SndFiles, sixteen_bit_files_decode_to_the_very_samples_they_hold) {
    for (const wchar_t* name : {L"tune.au", L"tune.snd", L"tune.aiff", L"tune.aifc"}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_TRUE(readToEnd(source).bytes == samplesOf(L"tune.wav")) << name;
    }
}

TEST(SndFiles, floating_point_files_keep_their_level) {
    for (const wchar_t* name : {L"float.au", L"float.aiff"}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_TRUE(readToEnd(source).bytes == samplesOf(L"tune.wav")) << name;
        EXPECT_EQ(source.CloseSource(), 0);
        EXPECT_EQ(source.Duration(), 3000);
        EXPECT_EQ(source.Position(), 0);
    }
}

TEST(SndFiles, names_that_the_code_page_lacks_play) {
    TempFolder folder;
    DecSND source;
    ASSERT_EQ(source.OpenSource(folder.write(L"\x4E00.au", fileBytes(mediaFile(L"tune.au")))), 0);
    EXPECT_TRUE(readToEnd(source).bytes == samplesOf(L"tune.wav"));
    source.CloseSource();
}

TEST(SndFiles, eight_and_24_bit_files_say_16_bits_over_a_record_that_says_8_and_24) {
    for (const auto& [name, bits] : {std::pair{L"8bit.aiff", 8}, std::pair{L"24bit.aiff", 24}}) {
        DecSND source;
        ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
        EXPECT_EQ(source.BitsPerSample(), 16);
        EXPECT_EQ(source.WFXPointer()->wBitsPerSample, bits);
        EXPECT_EQ(source.WFXPointer()->nBlockAlign, bits / 8 * 2);
        EXPECT_THAT(readToEnd(source).bytes, SizeIs(132'300 * 4));
    }
}

TEST(SndFiles, a_vox_file_opens_by_its_extension_as_8000_hz_mono) {
    DecSND source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.vox")), 0);
    EXPECT_EQ(source.SampleRate(), 8000);
    EXPECT_EQ(source.Channels(), 1);
    BareSnd bare(mediaFile(L"tune.vox"));
    EXPECT_TRUE(readToEnd(source).bytes == readRest(bare));
}

// The library itself cannot seek in it.
TEST(SndFiles, a_vox_file_is_sought_like_any_other) {
    DecSND source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.vox")), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 0);
    const Bytes whole = readToEnd(source).bytes;
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.Position(), source.Duration());
    for (const std::int32_t seconds : {2, 0, 1, 2}) {
        seekTo(source, seconds, 1);
        EXPECT_FALSE(source.EndOfStream());
        EXPECT_EQ(source.Position(), seconds * 1000);
        EXPECT_TRUE(readToEnd(source, 4001).bytes ==
                    Bytes(whole.begin() + seconds * 16000, whole.end()))
            << seconds;
    }
    seekTo(source, 50, 0);
    EXPECT_NEAR(source.Position(), source.Duration() / 2, 1);
    seekTo(source, 99, 0);
    EXPECT_NEAR(source.Position(), source.Duration() * 99 / 100, 1);
    std::int32_t mode = 1;
    EXPECT_EQ(source.SeekTo(4, mode), 4);
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST(SndFiles, a_vox_file_is_sought_from_another_current_folder_too) {
    TempFolder folder;
    folder.write(L"a.vox", fileBytes(mediaFile(L"tune.vox")));
    std::array<wchar_t, MAX_PATH> before{};
    ::GetCurrentDirectoryW(MAX_PATH, before.data());
    ::SetCurrentDirectoryW(folder.path().c_str());
    DecSND source;
    EXPECT_EQ(source.OpenSource(L"a.vox"), 0);
    ::SetCurrentDirectoryW(before.data());
    seekTo(source, 2, 1);
    seekTo(source, 1, 1);
    EXPECT_EQ(source.Position(), 1000);
    EXPECT_THAT(readToEnd(source).bytes, SizeIs(testing::Gt(30'000u)));
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST(SndFiles, a_file_that_the_library_does_not_know_returns_1) {
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
        EXPECT_THAT(readToEnd(source).bytes, SizeIs(200));
        source.CloseSource();
    }
}

} // namespace
} // namespace corvina::test
