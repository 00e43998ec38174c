#include "ConverterFixture.h"

namespace corvina::test {
namespace {

TEST_F(Converter, a_reset_starts_the_conversion_afresh) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pullAll(500);
    EXPECT_TRUE(converter_->EndOfStream());
    source.position = 1000;
    converter_->ResetACM();
    EXPECT_FALSE(converter_->EndOfStream());
    EXPECT_EQ(pull(500), 500);
    EXPECT_EQ(fakeAcm.conversions.back().flags, blockAlignFlag | startFlag);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 1000, all.begin() + 1500));
    EXPECT_EQ(fakeAcm.openStreams, 1);
}

TEST_F(Converter, a_reset_keeps_the_flipped_output_format) {
    fakeAcm.refusedBits = {8};
    MemorySource source(pcm(1000, 1, 4), noise(3000));
    ASSERT_TRUE(start(source));
    converter_->ResetACM();
    EXPECT_EQ(lastOutput().wBitsPerSample, 16);
    EXPECT_EQ(lastOutput().nAvgBytesPerSec, 1000u);
}

TEST_F(Converter, what_was_waiting_at_a_reset_is_handed_out_as_silence) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(100), 100);
    source.position = 2000;
    converter_->ResetACM();
    EXPECT_EQ(pull(400), 400);
    EXPECT_EQ(pulled_, Bytes(400));
    EXPECT_EQ(pull(100), 100);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 2000, all.begin() + 2100));
}

TEST_F(Converter, a_reset_forgets_unconverted_bytes) {
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) -> MMRESULT {
        header.cbSrcLengthUsed = header.cbDstLengthUsed = header.cbSrcLength / 2;
        return 0;
    };
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(250);
    converter_->ResetACM();
    pull(10);
    EXPECT_EQ(source.asked.back(), 500);
}

TEST_F(Converter, a_reset_measures_the_codec_anew) {
    fakeAcm.sourceSize = [](DWORD) { return DWORD{500}; };
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(10);
    EXPECT_EQ(source.asked.back(), 500);
    fakeAcm.sourceSize = [](DWORD) { return DWORD{300}; };
    converter_->ResetACM();
    pull(500);
    EXPECT_EQ(source.asked.back(), 300);
}

// The stream would be given up after 64 fills without a byte.
TEST_F(Converter, a_reset_forgets_how_often_nothing_came) {
    MemorySource source(pcm(500, 1, 16), {});
    int reads = 0;
    source.respond = [&reads](void* buffer, std::int32_t asked, std::int32_t& got) {
        ++reads;
        got = reads > 100 ? asked : 0;
        std::memset(buffer, 0x11, static_cast<std::size_t>(got));
        return reads == 50 ? SourceResult::notOpen : SourceResult::done;
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(100), 0);
    EXPECT_EQ(reads, 50);
    converter_->ResetACM();
    EXPECT_EQ(pull(100), 100);
    EXPECT_EQ(pulled_, Bytes(100, 0x11));
}

TEST_F(Converter, starts_again_with_PCM_without_asking_for_a_codec) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(100);
    const std::size_t opened = fakeAcm.openings.size();
    source.position = 2000;
    ASSERT_TRUE(converter_->startAgain());
    EXPECT_EQ(fakeAcm.openings.size(), opened);
    pulled_.clear();
    EXPECT_EQ(pull(100), 100);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 2000, all.begin() + 2100));
    EXPECT_EQ(fakeAcm.conversions.back().flags, blockAlignFlag | startFlag);
}

TEST_F(Converter, starts_again_at_the_end_of_the_source) {
    MemorySource source(pcm(500, 1, 16), noise(1000));
    ASSERT_TRUE(start(source));
    pullAll(500);
    EXPECT_TRUE(converter_->Exhausted());
    source.position = 0;
    ASSERT_TRUE(converter_->startAgain());
    EXPECT_FALSE(converter_->EndOfStream());
    EXPECT_EQ(pullAll(500), noise(1000));
}

TEST_F(Converter, does_not_start_again_with_compressed_sound_nor_once_it_is_closed) {
    WAVEFORMATEX compressed = pcm(1000, 1, 4);
    compressed.wFormatTag = WAVE_FORMAT_ADPCM;
    MemorySource codec(compressed, noise(3000));
    ASSERT_TRUE(start(codec));
    EXPECT_FALSE(converter_->startAgain());
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    EXPECT_TRUE(converter_->startAgain());
    converter_->CloseConverter();
    EXPECT_FALSE(converter_->startAgain());
}

TEST_F(Converter, a_reset_after_closing_does_nothing) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pullAll(500);
    converter_->CloseConverter();
    converter_->ResetACM();
    EXPECT_EQ(fakeAcm.openStreams, 0);
    EXPECT_TRUE(converter_->EndOfStream());
}

TEST_F(Converter, closing_twice_closes_the_stream_once_and_silences_what_waits) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_TRUE(converter_->CloseConverter());
    EXPECT_TRUE(converter_->CloseConverter());
    EXPECT_EQ(fakeAcm.faults.calls("acmStreamClose"), 1);
    EXPECT_EQ(pull(400), 400);
    EXPECT_EQ(pulled_, Bytes(400));
}

TEST_F(Converter, what_is_decoded_before_the_place_sought_is_dropped) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(500);
    source.sought = {.position = 1000, .leadIn = {.frames = 30}};
    EXPECT_EQ(pull(100), 100);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 1060, all.begin() + 1160));
    EXPECT_EQ(fakeAcm.openings.size(), 1u);
    EXPECT_EQ(fakeAcm.conversions.back().flags, blockAlignFlag);
    EXPECT_FALSE(source.sought);
}

TEST_F(Converter, more_than_a_buffer_may_come_before_the_place_sought) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    source.sought = {.position = 0, .leadIn = {.frames = 600}};
    EXPECT_EQ(pullAll(100).size(), 3000u - 1200);
    EXPECT_EQ(observer_.blocks.size(), 4u); // the third fill holds the place
}

TEST_F(Converter, a_place_behind_the_end_ends_the_sound) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    source.sought = {.position = 2000, .leadIn = {.frames = std::int64_t{1} << 40}};
    EXPECT_EQ(pull(100), 0);
    EXPECT_TRUE(converter_->Exhausted());
}

TEST_F(Converter, a_codec_that_remembers_is_opened_anew_at_the_place_sought) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    source.sought = {.position = 1000, .leadIn = {.frames = 30, .fromReset = true}};
    pull(500 - 60);
    EXPECT_EQ(fakeAcm.openings.size(), 1u) << "nothing was decoded before";
    source.sought = {.position = 2000, .leadIn = {.frames = 30, .fromReset = true}};
    EXPECT_EQ(pull(100), 100);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 2060, all.begin() + 2160));
    EXPECT_EQ(fakeAcm.openings.size(), 2u);
    EXPECT_EQ(fakeAcm.openStreams, 1);
    EXPECT_EQ(fakeAcm.conversions.back().flags, blockAlignFlag | startFlag);
}

// Codecs go by the record's average rate, and some writers leave it at 0.
TEST_F(Converter, a_codec_that_cannot_say_how_much_it_needs_gets_a_thirty_second) {
    fakeAcm.sourceSize = [](DWORD) -> DWORD { return 0; };
    MemorySource source(pcm(8000, 1, 16), noise(30'000));
    source.format.wFormatTag = WAVE_FORMAT_MPEGLAYER3;
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(1000), noise(30'000));
    EXPECT_EQ(source.asked.front(), 8000 / 32);
}

TEST_F(Converter, another_conversion_replaces_everything) {
    MemorySource first(pcm(5000, 2, 16), noise(30000));
    ASSERT_TRUE(start(first));
    pull(100);
    MemorySource second(pcm(1000, 1, 8), noise(1200, 5));
    ASSERT_TRUE(converter_->InitConversion(second, &observer_, false));
    EXPECT_EQ(fakeAcm.openStreams, 1);
    EXPECT_EQ(pullAll(100), noise(1200, 5));
}

TEST_F(Converter, another_conversion_starts_where_the_last_one_has_ended) {
    MemorySource first(pcm(500, 1, 16), noise(700));
    ASSERT_TRUE(start(first));
    EXPECT_EQ(pullAll(100), noise(700));
    ASSERT_TRUE(converter_->Exhausted());
    MemorySource second(pcm(500, 1, 16), noise(900, 5));
    ASSERT_TRUE(converter_->InitConversion(second, &observer_, false));
    EXPECT_FALSE(converter_->Exhausted());
    EXPECT_EQ(pullAll(100), noise(900, 5));
    EXPECT_EQ(fakeAcm.conversions[2].flags, blockAlignFlag | startFlag);
}

TEST_F(Converter, a_reset_forgets_how_much_was_to_be_dropped) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    source.sought = {.position = 0, .leadIn = {.frames = std::int64_t{1} << 40}};
    EXPECT_EQ(pull(100), 0);
    source.position = 0;
    converter_->ResetACM();
    EXPECT_EQ(pullAll(100), noise(3000));
}

TEST_F(Converter, what_a_codec_has_not_used_is_forgotten_when_it_is_opened_anew) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        return copySound(header, std::min(header.cbSrcLength, DWORD{300}));
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(300), 300);
    source.sought = {.position = 2000, .leadIn = {.frames = 30, .fromReset = true}};
    EXPECT_EQ(pull(100), 100);
    const Bytes all = noise(3000);
    EXPECT_EQ(pulled_, Bytes(all.begin() + 2060, all.begin() + 2160));
}

TEST_F(Converter, a_refused_second_conversion_leaves_no_stream) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    fakeAcm.refusedBits = {8, 16};
    EXPECT_FALSE(converter_->InitConversion(source, &observer_, false));
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

} // namespace
} // namespace corvina::test
