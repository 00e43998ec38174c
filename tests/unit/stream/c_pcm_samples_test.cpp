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

} // namespace
} // namespace corvina::test
