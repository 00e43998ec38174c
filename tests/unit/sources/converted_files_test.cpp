// What the converter makes of libsndfile's files, with every block of memory guarded.
//
// The source delivers 16-bit samples under a record that states the file's own width; the converter
// goes by what is delivered.

#include "platform/AnsiText.h"
#include "sources/DecSND.h"
#include "stream/cPCM.h"
#include "support/FileBytes.h"
#include "support/Media.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

// All that a source delivers.
Bytes delivered(cSoundSTRM& source) {
    constexpr std::int32_t piece = 9600; // whole frames of six channels too
    Bytes all;
    Bytes buffer(piece);
    std::int32_t got = 0;
    while (source.Read(buffer.data(), piece, got) == 0)
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

// Their record states the width in the file, 4 bits for every compressed one; the bytes have 16.
TEST_F(ConvertedSnd, files_of_other_widths_come_out_as_they_are_delivered) {
    for (const File& file :
         {File{L"8bit.aiff", 8, stereo}, File{L"tune.voc", 8, mono},
          File{L"24bit.aiff", 24, stereo}, File{L"mono24.aiff", 24, mono},
          File{L"mulaw.au", 4, 48'000}, File{L"tune.vox", 4, 48'000}, File{L"float.au", 32, stereo},
          File{L"float.aiff", 64, stereo}, File{L"six.aiff", 16, stereo * 3}}) {
        ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
        EXPECT_EQ(source_.WFXPointer()->wBitsPerSample, file.bits);
        const Bytes samples = delivered(source_);
        EXPECT_GE(samples.size(), file.bytes);
        for (const bool force16Bit : {false, true}) {
            ASSERT_EQ(source_.OpenSource(mediaFile(file.name)), 0);
            EXPECT_TRUE(converted(source_, force16Bit) == samples) << toAnsi(file.name).text;
        }
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

} // namespace
} // namespace corvina::test
