// What the converter makes of libsndfile's files, with every block of memory guarded.
//
// The source hands out 16-bit samples under a record that states the file's own width, and the
// converter goes by the record. So only files of 16 bits come out as they sound.

#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "stream/cPCM.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

// All that a source delivers.
Bytes delivered(cSoundSTRM& source) {
    Bytes all;
    Bytes buffer(8000);
    std::int32_t got = 0;
    while (source.Read(buffer.data(), 8000, got) == 0)
        all.insert(all.end(), buffer.begin(), buffer.begin() + got);
    all.insert(all.end(), buffer.begin(), buffer.begin() + got);
    return all;
}

// All that comes out of the converter, in blocks as the player asks for them.
Bytes converted(cSoundSTRM& source, bool force16Bit = false) {
    cPCM converter;
    EXPECT_TRUE(converter.InitConversion(source, nullptr, force16Bit));
    EXPECT_EQ(converter.OutputBitsPerSample(), 16);
    Bytes all;
    Bytes buffer(8000);
    std::int32_t got = 8000;
    while (got == 8000) {
        EXPECT_TRUE(converter.GetSamples(buffer.data(), 8000, got));
        all.insert(all.end(), buffer.begin(), buffer.begin() + got);
    }
    EXPECT_TRUE(converter.EndOfStream());
    return all;
}

struct File {
    const wchar_t* name;
    int bits;          // that its record states
    std::size_t bytes; // that come out
};

constexpr std::size_t stereo = 132'300 * 4; // three seconds of 16 bits
constexpr std::size_t mono = stereo / 2;

class ConvertedSnd : public testing::Test {
protected:
    // The bytes that the source delivers, as a WAV file whose record is theirs.
    Bytes convertedAsWav() {
        const Bytes wav = plainWav(*source_.WFXPointer(), delivered(source_));
        DecWAV source;
        EXPECT_EQ(source.OpenSource(folder_.write(L"a.wav", wav)), 0);
        return converted(source, true);
    }

    TempFolder folder_;
    DecSND source_;
};

TEST_F(ConvertedSnd, files_of_16_bits_come_out_sample_for_sample) {
    for (const File& file : {File{L"tune.au", 16, stereo}, File{L"tune.aiff", 16, stereo},
                             File{L"tune.aifc", 16, stereo}, File{L"mono16.voc", 16, mono}}) {
        ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
        const Bytes samples = delivered(source_);
        ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
        EXPECT_TRUE(converted(source_) == samples);
        EXPECT_EQ(samples.size(), file.bytes);
    }
}

// Each byte of a 16-bit sample is taken for a sample of 8 bits: noise, and twice as long. Of 24
// bits three bytes are taken for a sample: noise, and two thirds as long.
TEST_F(ConvertedSnd, files_of_other_widths_come_out_as_if_the_source_delivered_that_width) {
    for (const File& file : {File{L"8bit.aiff", 8, stereo * 2}, File{L"tune.voc", 8, mono * 2},
                             File{L"mono24.aiff", 24, mono * 2 / 3}}) {
        ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
        EXPECT_EQ(source_.WFXPointer()->wBitsPerSample, file.bits);
        const Bytes heard = converted(source_);
        EXPECT_EQ(heard.size(), file.bytes);
        ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
        EXPECT_TRUE(heard == convertedAsWav()) << file.bits;
    }
}

TEST_F(ConvertedSnd, half_a_frame_is_not_read_which_is_taken_for_the_end) {
    ASSERT_EQ(source_.OpenSource(mediaFile(L"tune.aiff")), 0);
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source_.Read(buffer, 6, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(source_.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, 8);
}

// The converter asks for half a frame once a codec has left a block of 24 bits over, as Wine's does
// each time.
TEST_F(ConvertedSnd, a_stereo_file_of_24_bits_may_end_early) {
    ASSERT_EQ(source_.OpenSource(mediaFile(L"24bit.aiff")), 0);
    const Bytes heard = converted(source_);
    ASSERT_EQ(source_.OpenSource(mediaFile(L"24bit.aiff")), 0);
    const Bytes whole = convertedAsWav();
    EXPECT_EQ(whole.size(), stereo * 2 / 3);
    ASSERT_LE(heard.size(), whole.size());
    EXPECT_GT(heard.size(), 44100u);
    EXPECT_TRUE(std::equal(heard.begin(), heard.end(), whole.begin()));
}

// Their record states 4 bits, of which one channel has blocks of 0 bytes.
TEST_F(ConvertedSnd, compressed_files_are_decoded_but_not_converted) {
    for (const wchar_t* name : {L"mulaw.au", L"tune.vox"}) {
        ASSERT_EQ(source_.OpenSource(mediaFile(name)), 0);
        EXPECT_EQ(source_.WFXPointer()->wBitsPerSample, 4);
        EXPECT_EQ(source_.WFXPointer()->nBlockAlign, 0);
        for (const bool force16Bit : {false, true}) {
            cPCM converter;
            EXPECT_FALSE(converter.InitConversion(source_, nullptr, force16Bit));
        }
        EXPECT_GE(delivered(source_).size(), 48'000u);
    }
}

} // namespace
} // namespace corvina::test
