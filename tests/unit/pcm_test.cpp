#include "stream/cPCM.h"

#include "runtime/RuntimeError.h"
#include "support/FakeAcm.h"
#include "support/MemorySource.h"
#include "support/SampleObserver.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;

constexpr DWORD blockAlignFlag = ACM_STREAMCONVERTF_BLOCKALIGN;
constexpr DWORD startFlag = ACM_STREAMCONVERTF_START;
constexpr DWORD endFlag = ACM_STREAMCONVERTF_END;

// 8-bit mono at 1000 Hz in 500-byte halves of a second, and 16-bit at 500 Hz: sizes to count by
// hand.
class Converter : public testing::Test {
protected:
    void SetUp() override { fakeAcm.reset(); }
    void TearDown() override {
        converter_.reset();
        EXPECT_EQ(fakeAcm.openStreams, 0);
        EXPECT_EQ(fakeAcm.preparedHeaders, 0);
    }

    bool start(MemorySource& source, bool force16Bit = false) {
        converter_ = std::make_unique<cPCM>(fakeAcmApi);
        return converter_->InitConversion(source, &observer_, force16Bit);
    }

    std::int32_t pull(std::int32_t bytes) {
        pulled_.assign(static_cast<std::size_t>(bytes), 0xEE);
        std::int32_t got = -1;
        EXPECT_TRUE(converter_->GetSamples(pulled_.data(), bytes, got));
        return got;
    }

    // Everything to the end, in blocks of that size.
    Bytes pullAll(std::int32_t block) {
        Bytes heard;
        std::int32_t got = 0;
        do {
            got = pull(block);
            heard.insert(heard.end(), pulled_.begin(), pulled_.begin() + got);
        } while (got == block);
        return heard;
    }

    static WAVEFORMATEX lastOutput() { return fakeAcm.openings.back().output; }

    SampleObserver observer_;
    std::unique_ptr<cPCM> converter_;
    Bytes pulled_;
};

// ---- the output format

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

// ---- handing out

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
    source.answer = [](void*, std::int32_t, std::int32_t&) { return SourceResult::notOpen; };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(100), 0);
    EXPECT_TRUE(converter_->EndOfStream());
}

TEST_F(Converter, bytes_that_were_not_converted_go_first_into_the_next_conversion) {
    // A codec of 64-byte blocks.
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) -> MMRESULT {
        const DWORD bytes = std::min(header.cbSrcLength, header.cbDstLength) / 64 * 64;
        std::memcpy(header.pbDst, header.pbSrc, bytes);
        header.cbSrcLengthUsed = header.cbDstLengthUsed = bytes;
        return 0;
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

// ---- the observer

TEST_F(Converter, each_converted_block_of_16_bits_reaches_the_observer_once_and_whole) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    pullAll(100);
    ASSERT_EQ(observer_.blocks.size(), 3u);
    EXPECT_EQ(observer_.blocks[0].bytes, 500);
    EXPECT_EQ(observer_.blocks[2].bytes, 200);
    EXPECT_EQ(observer_.blocks[0].channels, 1);
    EXPECT_EQ(observer_.blocks[0].elements, 250u);
    Bytes seen;
    for (const auto& block : observer_.blocks)
        seen.insert(seen.end(), block.content.begin(), block.content.end());
    EXPECT_EQ(seen, noise(1200));
}

TEST_F(Converter, a_block_of_8_bits_never_reaches_the_observer) {
    MemorySource source(pcm(1000, 1, 8), noise(1200));
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100).size(), 1200u);
    EXPECT_TRUE(observer_.blocks.empty());
}

TEST_F(Converter, an_empty_block_never_reaches_the_observer) {
    MemorySource source(pcm(500, 1, 16), {});
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_TRUE(observer_.blocks.empty());
}

TEST_F(Converter, an_observer_is_not_needed) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    Bytes buffer(100);
    std::int32_t got = 0;
    EXPECT_TRUE(converter.GetSamples(buffer.data(), 100, got));
    EXPECT_EQ(got, 100);
}

TEST_F(Converter, the_observer_is_not_counted) {
    MemorySource source(pcm(500, 1, 16), noise(1200));
    ASSERT_TRUE(start(source));
    pullAll(100);
    EXPECT_EQ(observer_.AddRef(), 2u);
    observer_.Release();
}

TEST_F(Converter, the_observer_sees_an_array_of_16_bit_integers_from_index_0) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_EQ(observer_.type, VT_I2);
    EXPECT_EQ(observer_.lowerBound, 0);
}

TEST_F(Converter, an_observer_cannot_free_or_resize_the_array) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [](SAFEARRAY** samples) {
        SAFEARRAYBOUND bound{1, 0};
        EXPECT_NE(::SafeArrayRedim(*samples, &bound), S_OK);
        EXPECT_NE(::SafeArrayDestroyData(*samples), S_OK);
        EXPECT_NE(::SafeArrayDestroy(*samples), S_OK);
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(1500));
}

TEST_F(Converter, an_observer_may_put_an_array_of_its_own_in_the_place) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [](SAFEARRAY** samples) { *samples = ::SafeArrayCreateVector(VT_I2, 0, 10); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(1500));
    observer_.act = [](SAFEARRAY** samples) { *samples = nullptr; };
    ASSERT_TRUE(start(source));
    source.position = 0;
    EXPECT_EQ(pullAll(100), noise(1500));
}

TEST_F(Converter, what_an_observer_writes_into_the_samples_is_played) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    observer_.act = [](SAFEARRAY** samples) { std::memset((*samples)->pvData, 0, 500); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), Bytes(500));
}

TEST_F(Converter, an_observer_may_close_the_converter) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    observer_.act = [this](SAFEARRAY**) { converter_->CloseConverter(); };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(500), 500);
    EXPECT_EQ(pulled_, Bytes(500));
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

// ---- closing and starting again

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

TEST_F(Converter, another_conversion_replaces_everything) {
    MemorySource first(pcm(5000, 2, 16), noise(30000));
    ASSERT_TRUE(start(first));
    pull(100);
    MemorySource second(pcm(1000, 1, 8), noise(1200, 5));
    ASSERT_TRUE(converter_->InitConversion(second, &observer_, false));
    EXPECT_EQ(fakeAcm.openStreams, 1);
    EXPECT_EQ(pullAll(100), noise(1200, 5));
}

TEST_F(Converter, a_refused_second_conversion_leaves_no_stream) {
    MemorySource source(pcm(500, 1, 16), noise(3000));
    ASSERT_TRUE(start(source));
    fakeAcm.refusedBits = {8, 16};
    EXPECT_FALSE(converter_->InitConversion(source, &observer_, false));
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

} // namespace
} // namespace corvina
