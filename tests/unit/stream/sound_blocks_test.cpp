#include "stream/SoundBlocks.h"

#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

struct BlockRecord {
    WAVEFORMATEX format;
    WORD samplesInBlock;
};

BlockRecord blockRecord(WORD tag, WORD extraBytes) {
    BlockRecord record{pcm(8000, 1, 4), 505};
    record.format.wFormatTag = tag;
    record.format.cbSize = extraBytes;
    return record;
}

TEST(SoundBlocks, of_these_formats_decode_to_as_many_frames_as_the_record_says) {
    for (const WORD tag :
         {WORD{WAVE_FORMAT_ADPCM}, WORD{WAVE_FORMAT_IMA_ADPCM}, WORD{WAVE_FORMAT_GSM610}})
        for (const WORD extraBytes : {WORD{2}, WORD{32}})
            EXPECT_EQ(505, framesInBlock(blockRecord(tag, extraBytes).format)) << tag;
}

TEST(SoundBlocks, of_a_record_that_is_too_short_for_it_decode_to_an_unknown_number) {
    for (const WORD extraBytes : {WORD{0}, WORD{1}})
        EXPECT_EQ(0, framesInBlock(blockRecord(WAVE_FORMAT_ADPCM, extraBytes).format));
}

TEST(SoundBlocks, of_any_other_format_decode_to_an_unknown_number) {
    for (const WORD tag :
         {WORD{WAVE_FORMAT_PCM}, WORD{WAVE_FORMAT_MULAW}, WORD{WAVE_FORMAT_MPEGLAYER3}})
        EXPECT_EQ(0, framesInBlock(blockRecord(tag, 2).format)) << tag;
}

} // namespace
} // namespace corvina::test
