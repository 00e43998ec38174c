// The converter: which output format is chosen, and which streams are opened for it.

#include "ConverterFixture.h"
#include "runtime/RuntimeError.h"

namespace corvina::test {
namespace {

TEST_F(Converter, fewer_than_8_bits_become_8_and_more_become_16) {
    const std::pair<WORD, WORD> widths[] = {{0, 8},   {1, 8},   {4, 8},      {8, 8},
                                            {9, 16},  {12, 16}, {16, 16},    {24, 16},
                                            {32, 16}, {64, 16}, {0xFFFF, 16}};
    for (const auto& [in, out] : widths) {
        WAVEFORMATEX record = pcm(8000, 1, 8);
        record.wBitsPerSample = in;
        MemorySource source(record, {});
        ASSERT_TRUE(start(source));
        EXPECT_EQ(converter_->OutputBitsPerSample(), out) << in;
    }
}

TEST_F(Converter, sixteen_bits_can_be_forced_by_the_caller_and_by_the_source) {
    MemorySource source(pcm(8000, 1, 8), {});
    ASSERT_TRUE(start(source, true));
    EXPECT_EQ(converter_->OutputBitsPerSample(), 16);
    source.force16Bit = true;
    ASSERT_TRUE(start(source, false));
    EXPECT_EQ(converter_->OutputBitsPerSample(), 16);
}

TEST_F(Converter, the_output_is_plain_pcm_of_the_sources_rate_and_channels) {
    WAVEFORMATEX record = pcm(22050, 2, 24);
    record.wFormatTag = WAVE_FORMAT_ADPCM;
    record.cbSize = 40;
    MemorySource source(record, {});
    ASSERT_TRUE(start(source));
    const WAVEFORMATEX output = lastOutput();
    EXPECT_EQ(output.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(output.nChannels, 2);
    EXPECT_EQ(output.nSamplesPerSec, 22050u);
    EXPECT_EQ(output.nBlockAlign, 4);
    EXPECT_EQ(output.nAvgBytesPerSec, 88200u);
    EXPECT_EQ(output.cbSize, 0);
    EXPECT_EQ(converter_->OutputSamplerate(), 22050);
    EXPECT_EQ(converter_->OutputChannels(), 2);
}

TEST_F(Converter, the_codec_gets_the_sources_record_where_the_source_holds_it) {
    MemorySource source(pcm(8000, 1, 8), {});
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.openings.front().source, &source.format);
}

TEST_F(Converter, any_installed_codec_may_convert_without_a_filter_a_callback_or_flags) {
    MemorySource source(pcm(8000, 1, 8), {});
    ASSERT_TRUE(start(source));
    const FakeAcm::Opening& opening = fakeAcm.openings.front();
    EXPECT_EQ(opening.driver, nullptr);
    EXPECT_EQ(opening.filter, nullptr);
    EXPECT_EQ(opening.callback, 0u);
    EXPECT_EQ(opening.instance, 0u);
    EXPECT_EQ(opening.flags, 0u);
}

TEST_F(Converter, a_refused_width_is_flipped_and_the_rest_of_the_record_stays) {
    fakeAcm.refusedBits = {8};
    MemorySource source(pcm(8000, 2, 4), {});
    ASSERT_TRUE(start(source));
    EXPECT_EQ(converter_->OutputBitsPerSample(), 16);
    EXPECT_EQ(lastOutput().nBlockAlign, 2);
    EXPECT_EQ(lastOutput().nAvgBytesPerSec, 16000u);

    fakeAcm.refusedBits = {16};
    MemorySource wide(pcm(8000, 2, 24), {});
    ASSERT_TRUE(start(wide));
    EXPECT_EQ(converter_->OutputBitsPerSample(), 8);
    EXPECT_EQ(lastOutput().nBlockAlign, 4);
}

TEST_F(Converter, a_source_that_forces_16_bits_still_gets_the_retry) {
    fakeAcm.refusedBits = {16};
    MemorySource source(pcm(8000, 1, 8), {});
    source.force16Bit = true;
    ASSERT_TRUE(start(source));
    EXPECT_EQ(converter_->OutputBitsPerSample(), 8);
}

TEST_F(Converter, a_caller_that_forces_16_bits_gets_no_retry) {
    fakeAcm.refusedBits = {16};
    MemorySource source(pcm(8000, 1, 8), {});
    EXPECT_FALSE(start(source, true));
    EXPECT_EQ(fakeAcm.openings.size(), 1u);
}

TEST_F(Converter, a_codec_that_goes_by_the_whole_record_gets_a_consistent_one_in_the_end) {
    fakeAcm.refusedBits = {8};
    fakeAcm.faults.arm("acmStreamOpen", 2);
    MemorySource source(pcm(8000, 2, 4), {});
    ASSERT_TRUE(start(source));
    EXPECT_EQ(lastOutput().wBitsPerSample, 16);
    EXPECT_EQ(lastOutput().nBlockAlign, 4);
    EXPECT_EQ(lastOutput().nAvgBytesPerSec, 32000u);
}

TEST_F(Converter, a_format_that_no_codec_takes_is_refused) {
    fakeAcm.refusedBits = {8, 16};
    MemorySource source(pcm(8000, 1, 16), {});
    EXPECT_FALSE(start(source));
}

TEST_F(Converter, a_record_with_fields_of_0_that_codecs_divide_by_is_not_shown_to_them) {
    for (int field = 0; field < 3; ++field) {
        MemorySource source(pcm(8000, 1, 16), {});
        if (field == 0)
            source.format.nChannels = 0;
        if (field == 1)
            source.format.nSamplesPerSec = 0;
        if (field == 2)
            source.format.nBlockAlign = 0;
        EXPECT_FALSE(start(source));
        EXPECT_TRUE(fakeAcm.openings.empty());
    }
}

TEST_F(Converter, a_source_without_a_format_is_refused) {
    MemorySource source(pcm(8000, 1, 16), {});
    source.hasFormat = false;
    EXPECT_FALSE(start(source));
}

TEST_F(Converter, more_channels_than_a_block_align_can_hold_overflow) {
    MemorySource source(pcm(8000, 1, 16), {});
    source.format.nChannels = 0xFFFF;
    EXPECT_THROW((void)start(source), RuntimeError);
}

TEST_F(Converter, half_a_second_of_output_is_measured_ties_to_even) {
    MemorySource source(pcm(11025, 1, 8), {});
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.measured.back(), 5512u); // 5512.5
    source.format = pcm(11027, 1, 8);
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.measured.back(), 5514u); // 5513.5
}

TEST_F(Converter, half_a_second_of_no_bytes_is_accepted_and_silent) {
    MemorySource source(pcm(1, 1, 8), noise(10));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.measured, std::vector<DWORD>{0});
    EXPECT_EQ(pull(10), 0);
    EXPECT_TRUE(converter_->Exhausted());
}

TEST_F(Converter, the_source_is_asked_for_what_the_codec_needs_for_half_a_second_of_output) {
    fakeAcm.sourceSize = [](DWORD outputBytes) { return outputBytes / 2; };
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    pull(1);
    EXPECT_EQ(source.asked[0], 250);
    EXPECT_EQ(fakeAcm.conversions[0].sourceLength, 250u);
    EXPECT_EQ(fakeAcm.conversions[0].capacity, 500u);
}

TEST_F(Converter, a_stream_that_cannot_be_measured_is_closed_and_refused) {
    MemorySource source(pcm(8000, 1, 8), {});
    fakeAcm.faults.arm("acmStreamSize", 1);
    EXPECT_FALSE(start(source));
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

TEST_F(Converter, the_second_entry_does_the_same) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    converter_ = std::make_unique<cPCM>(fakeAcmApi);
    ASSERT_TRUE(converter_->InitConversion2(source, &observer_, false));
    EXPECT_EQ(pullAll(100), noise(1500));
}

} // namespace
} // namespace corvina::test
