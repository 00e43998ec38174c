#include "stream/ConverterFormats.h"

#include "support/WavBytes.h"

#include <cstddef>
#include <gtest/gtest.h>

#include <mmreg.h>

namespace corvina::test {
namespace {

// A record whose codec divides by the samples in a block, with room for coefficients.
struct BlockRecord {
    WAVEFORMATEX format;
    WORD samplesInBlock;
    std::byte rest[30];
};

BlockRecord blockRecord(WORD tag, WORD extraBytes, WORD samplesInBlock) {
    BlockRecord record{};
    record.format = pcm(8000, 1, 4);
    record.format.nBlockAlign = 256;
    record.format.wFormatTag = tag;
    record.format.cbSize = extraBytes;
    record.samplesInBlock = samplesInBlock;
    return record;
}

TEST(ConverterFormats, no_samples_in_a_block_make_a_record_incomplete) {
    const std::pair<WORD, WORD> formats[] = {{WAVE_FORMAT_ADPCM, WORD{32}},
                                             {WAVE_FORMAT_IMA_ADPCM, WORD{2}},
                                             {WAVE_FORMAT_GSM610, WORD{2}}};
    for (const auto& [tag, extraBytes] : formats) {
        EXPECT_TRUE(isComplete(blockRecord(tag, extraBytes, 505).format)) << tag;
        EXPECT_FALSE(isComplete(blockRecord(tag, extraBytes, 0).format)) << tag;
    }
}

TEST(ConverterFormats, a_record_of_another_size_does_not_say_how_many_samples_are_in_a_block) {
    for (const WORD extraBytes : {WORD{0}, WORD{4}, WORD{31}, WORD{33}})
        for (const WORD tag :
             {WORD{WAVE_FORMAT_ADPCM}, WORD{WAVE_FORMAT_IMA_ADPCM}, WORD{WAVE_FORMAT_MULAW}})
            EXPECT_TRUE(isComplete(blockRecord(tag, extraBytes, 0).format))
                << tag << ' ' << extraBytes;
}

} // namespace
} // namespace corvina::test
