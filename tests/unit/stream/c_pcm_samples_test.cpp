// The converter: how it reads the source, converts and returns samples.

#include "ConverterFixture.h"
#include "runtime/RuntimeError.h"

namespace corvina::test {
namespace {

TEST_F(Converter, without_a_source_there_are_no_samples) {
    cPCM converter(fakeAcmApi);
    std::int32_t got = 77;
    Bytes buffer(10);
    EXPECT_FALSE(converter.GetSamples(buffer.data(), 10, got));
    EXPECT_EQ(got, 77);
    converter.ResetACM();
    EXPECT_TRUE(converter.CloseConverter());
}

TEST_F(Converter, every_byte_comes_once_in_blocks_of_any_size) {
    for (const std::int32_t block : {1, 7, 499, 500, 501, 1000, 5000}) {
        MemorySource source(pcm(500, 1, 16), noise(3333));
        ASSERT_TRUE(start(source));
        EXPECT_EQ(pullAll(block), noise(3333)) << block;
    }
}

TEST_F(Converter, a_block_larger_than_the_output_buffer_takes_several_fills) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(2000), 2000);
    EXPECT_EQ(fakeAcm.conversions.size(), 4u);
}

TEST_F(Converter, a_block_that_empties_the_buffer_does_not_fill_it_again) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(500), 500);
    EXPECT_EQ(fakeAcm.conversions.size(), 1u);
}

TEST_F(Converter, no_bytes_asked_are_no_bytes_and_no_fill) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    for (const std::int32_t bytes : {0, -1, -2147483647 - 1}) {
        std::int32_t got = 77;
        EXPECT_TRUE(converter_->GetSamples(nullptr, bytes, got));
        EXPECT_EQ(got, 0);
    }
    EXPECT_TRUE(fakeAcm.conversions.empty());
}

TEST_F(Converter, the_end_is_reported_with_the_last_fill_and_then_come_fewer_bytes) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(1000), 1000);
    EXPECT_FALSE(converter_->EndOfStream());
    EXPECT_EQ(pull(100), 100);
    EXPECT_TRUE(converter_->EndOfStream());
    EXPECT_EQ(pull(500), 100);
    EXPECT_EQ(pull(500), 0);
    EXPECT_TRUE(converter_->EndOfStream());
}

TEST_F(Converter, only_the_first_conversion_starts_and_only_the_last_ends) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    pullAll(100);
    ASSERT_EQ(fakeAcm.conversions.size(), 3u);
    EXPECT_EQ(fakeAcm.conversions[0].flags, blockAlignFlag | startFlag);
    EXPECT_EQ(fakeAcm.conversions[1].flags, blockAlignFlag);
    EXPECT_EQ(fakeAcm.conversions[2].flags, blockAlignFlag | endFlag);
}

TEST_F(Converter, a_source_that_fails_ends_the_stream) {
    MemorySource source(pcm(500, 1, 16), {});
    source.respond = [](void*, std::int32_t, std::int32_t&) { return SourceResult::notOpen; };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(100), 0);
    EXPECT_TRUE(converter_->EndOfStream());
}

TEST_F(Converter, bytes_that_were_not_converted_go_first_into_the_next_conversion) {
    // A codec of 64-byte blocks.
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        return copySound(header, std::min(header.cbSrcLength, header.cbDstLength) / 64 * 64);
    };
    MemorySource source(pcm(500, 1, 16), noise(6400));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(6400));
    EXPECT_EQ(source.asked[0], 500);
    EXPECT_EQ(source.asked[1], 448);
}

TEST_F(Converter, a_failed_conversion_is_skipped_and_the_next_goes_on_without_a_start) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    ASSERT_TRUE(start(source));
    fakeAcm.faults.arm("acmStreamConvert", 1);
    const Bytes heard = pullAll(100);
    const Bytes all = noise(1500);
    EXPECT_EQ(heard, Bytes(all.begin() + 500, all.end()));
    EXPECT_EQ(fakeAcm.conversions[1].flags, blockAlignFlag);
}

TEST_F(Converter, a_failed_conversion_does_not_bring_the_sound_before_it_again) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    ASSERT_TRUE(start(source));
    fakeAcm.faults.arm("acmStreamConvert", 2);
    Bytes expected = noise(1500);
    expected.erase(expected.begin() + 500, expected.begin() + 1000);
    EXPECT_EQ(pullAll(100), expected);
}

TEST_F(Converter, a_codec_that_uses_nothing_of_the_last_bytes_is_not_asked_again) {
    MemorySource source(pcm(500, 1, 16), noise(400));
    fakeAcm.conversion = [](ACMSTREAMHEADER&) { return MMRESULT{0}; };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(100), 0);
    EXPECT_EQ(fakeAcm.conversions.size(), 1u);
    EXPECT_TRUE(converter_->Exhausted());
}

TEST_F(Converter, a_codec_that_makes_no_sound_of_what_is_left_is_given_up_after_64_fills) {
    constexpr int before = 10;
    MemorySource source(pcm(500, 1, 16), {});
    source.respond = [&](void* buffer, std::int32_t, std::int32_t& got) {
        const bool last = source.asked.size() > before;
        got = last ? 400 : 2;
        std::memset(buffer, 0, static_cast<std::size_t>(got));
        return last ? SourceResult::endOfData : SourceResult::done;
    };
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        if (header.cbSrcLength == 2)
            return copySound(header, 2);
        header.cbSrcLengthUsed = 2;
        return MMRESULT{0};
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(500), 2 * before);
    EXPECT_TRUE(converter_->Exhausted());
    EXPECT_EQ(fakeAcm.conversions.size(), before + 64u);
}

TEST_F(Converter, a_codec_that_takes_none_of_the_whole_blocks_gets_a_part_of_the_next) {
    MemorySource source(pcm(500, 1, 16), noise(5000));
    source.format.wFormatTag = WAVE_FORMAT_ADPCM;
    source.format.nBlockAlign = 300;
    fakeAcm.sourceSize = [](DWORD) { return DWORD{1000}; };
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        return copySound(header, header.cbSrcLength < 1000 ? 0 : 500);
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(500), 500);
    ASSERT_GE(source.asked.size(), 2u);
    EXPECT_EQ(source.asked[0], 900);
    EXPECT_EQ(source.asked[1], 100);
}

} // namespace
} // namespace corvina::test
