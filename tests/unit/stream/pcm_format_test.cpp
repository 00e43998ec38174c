// The format record of PCM.

#include "stream/PcmFormat.h"
#include "support/ErrorNumber.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(PcmFormat, describes_pcm_of_that_shape) {
    const WAVEFORMATEX format = pcmFormat(44100, 2, 16);
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(format.nChannels, 2);
    EXPECT_EQ(format.nSamplesPerSec, 44100u);
    EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
    EXPECT_EQ(format.nBlockAlign, 4);
    EXPECT_EQ(format.wBitsPerSample, 16);
    EXPECT_EQ(format.cbSize, 0);
}

TEST(PcmFormat, a_block_of_half_a_byte_is_rounded_to_the_even_number) {
    EXPECT_EQ(pcmFormat(8000, 1, 4).nBlockAlign, 0);  // 0.5
    EXPECT_EQ(pcmFormat(8000, 1, 12).nBlockAlign, 2); // 1.5
    EXPECT_EQ(pcmFormat(8000, 5, 4).nBlockAlign, 2);  // 2.5
    EXPECT_EQ(pcmFormat(8000, 2, 4).nBlockAlign, 1);
}

TEST(PcmFormat, numbers_of_0_are_taken_as_they_are) {
    EXPECT_EQ(pcmFormat(0, 0, 0).nBlockAlign, 0);
    EXPECT_EQ(pcmFormat(0, 0, 0).nAvgBytesPerSec, 0u);
}

TEST(PcmFormat, what_does_not_fit_its_field_raises_overflow) {
    EXPECT_EQ(errorNumberOf([] { static_cast<void>(pcmFormat(8000, 32767, 32)); }), 6);
    EXPECT_EQ(errorNumberOf([] { static_cast<void>(pcmFormat(INT32_MAX, 2, 16)); }), 6);
}

} // namespace
} // namespace corvina::test
