// The formats of files in words.

#include "sources/FormatOfFile.h"
#include "support/Media.h"
#include "support/RandomDamage.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

struct Expected {
    const wchar_t* file;
    const wchar_t* words;
};

// Files of public tools.
constexpr Expected media[] = {
    {L"tune.wav", L"WAV, 16 bits"},
    {L"8bit.wav", L"WAV, 8 bits"},
    {L"24bit.wav", L"WAV, 24 bits"},
    {L"32bit.wav", L"WAV, 32 bits"},
    {L"float.wav", L"WAV, 32 bits floating point"},
    {L"double.wav", L"WAV, 64 bits floating point"},
    {L"extensible.wav", L"WAV, 24 bits"},
    {L"rf64.wav", L"RF64, 16 bits"},
    {L"six.wav", L"WAV, 16 bits"},
    {L"mp3-in.wav", L"WAV, MP3"},
    {L"piped.wav", L"WAV, 16 bits"},
    {L"ms-adpcm.wav", L"WAV, MS-ADPCM"},
    {L"ima-adpcm.wav", L"WAV, IMA-ADPCM"},
    {L"mulaw.wav", L"WAV, mu-law"},
    {L"alaw.wav", L"WAV, A-law"},
    {L"gsm.wav", L"WAV, GSM 6.10"},
    {L"tune.mp3", L"MP3"},
    {L"tone.mp3", L"MP3"},
    {L"clip.mp2", L"MP2"},
    {L"tune.aac", L"AAC"},
    {L"clip.m4a", L"AAC"},
    {L"tune.m4a", L"Apple Lossless, 16 bits"},
    {L"tune.wma", L"Windows Media Audio"},
    {L"tune.wmv", L"Windows Media Audio"},
    {L"tune.ogg", L"Ogg Vorbis"},
    {L"tune.opus", L"Ogg Opus"},
    {L"clip.oga", L"Ogg FLAC, 16 bits"},
    {L"tune.flac", L"FLAC, 16 bits"},
    {L"tune.ape", L"Monkey's Audio, 16 bits"},
    {L"8bit.ape", L"Monkey's Audio, 8 bits"},
    {L"24bit.ape", L"Monkey's Audio, 24 bits"},
    {L"tune.au", L"AU, 16 bits"},
    {L"mulaw.au", L"AU, mu-law"},
    {L"float.au", L"AU, 32 bits floating point"},
    {L"tune.aiff", L"AIFF, 16 bits"},
    {L"24bit.aiff", L"AIFF, 24 bits"},
    {L"float.aiff", L"AIFF-C, 64 bits floating point"},
    {L"tune.aifc", L"AIFF-C, 16 bits"},
    {L"tune.voc", L"VOC, 8 bits"},
    {L"mono16.voc", L"VOC, 16 bits"},
    {L"clip.caf", L"CAF, 16 bits"},
    {L"float.caf", L"CAF, 32 bits floating point"},
    {L"clip.w64", L"Wave64, 16 bits"},
};

class FormatOfFile : public testing::Test {
protected:
    std::wstring of(const Bytes& bytes) { return formatOfFile(folder_.write(L"a file", bytes)); }
    TempFolder folder_;
};

TEST_F(FormatOfFile, goes_by_what_the_files_of_public_tools_hold) {
    for (const auto& [file, words] : media) {
        EXPECT_EQ(formatOfFile(mediaFile(file)), words)
            << testing::PrintToString(std::wstring(file));
        EXPECT_EQ(of(fileBytes(mediaFile(file))), words) << "whatever its name is";
    }
}

TEST_F(FormatOfFile, is_unknown_for_files_that_do_not_say_it) {
    EXPECT_EQ(of({}), L"");
    EXPECT_EQ(of(bytesOf("a text without any sound")), L"");
    EXPECT_EQ(of(Bytes(5000)), L"");
    EXPECT_EQ(formatOfFile(L"no such file"), L"");
    EXPECT_EQ(formatOfFile(L"NUL"), L"");
}

TEST_F(FormatOfFile, is_found_behind_tags) {
    const Bytes tag = id3Tag(id3Text("TIT2", L"Song"));
    EXPECT_EQ(of(joined({tag, mpegFrames()})), L"MP3");
    EXPECT_EQ(of(joined({tag, tag, Bytes(100), mpegFrames()})), L"MP3");
    EXPECT_EQ(of(joined({tag, fileBytes(mediaFile(L"clip.flac"))})), L"FLAC, 16 bits");
    EXPECT_EQ(of(joined({tag, fileBytes(mediaFile(L"tune.aac"))})), L"AAC");
    EXPECT_EQ(of(id3Tag(Bytes(10), 0x0FFFFFFF)), L"MP3") << "a tag that says more than there is";
}

TEST_F(FormatOfFile, of_a_cut_header_names_the_kind_alone) {
    EXPECT_EQ(of(bytesOf("RIFF\1\1\1\1WAVE")), L"WAV");
    EXPECT_EQ(of(bytesOf("FORM\1\1\1\1AIFF")), L"AIFF");
    EXPECT_EQ(of(bytesOf(".snd")), L"AU");
    EXPECT_EQ(of(bytesOf("caff")), L"CAF");
    EXPECT_EQ(of(bytesOf("OggS")), L"Ogg");
    EXPECT_EQ(of(bytesOf("\1\1\1\1ftyp")), L"MP4");
}

TEST_F(FormatOfFile, has_no_width_that_no_sample_has) {
    EXPECT_EQ(of(plainWav(pcm(44100, 2, 60000), Bytes(10))), L"WAV");
    Bytes ape = fileBytes(mediaFile(L"tune.ape"));
    constexpr std::size_t width = 52 + 16;
    ASSERT_EQ(of(ape), L"Monkey's Audio, 16 bits");
    ape[width] = 0xE0;
    ape[width + 1] = 0x04;
    EXPECT_EQ(of(ape), L"Monkey's Audio");
    Bytes alac = fileBytes(mediaFile(L"tune.m4a"));
    const std::string_view name = "alac";
    const auto entry = std::search(alac.begin(), alac.end(), name.begin(), name.end());
    ASSERT_NE(entry, alac.end());
    constexpr std::ptrdiff_t bits = 22;
    entry[bits] = 0x7F;
    EXPECT_EQ(of(alac), L"Apple Lossless");
}

TEST_F(FormatOfFile, of_damaged_files_is_one_of_the_words_or_none) {
    for (const auto& [file, words] : media) {
        Bytes bytes = fileBytes(mediaFile(file));
        bytes.resize(std::min<std::size_t>(bytes.size(), 3000));
        RandomDamage::forEachVariant(
            bytes, [&](const Bytes& damaged) { ASSERT_LT(of(damaged).size(), 40u); });
    }
}

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 20);
}
