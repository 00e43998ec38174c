// The converter: the format that it is given is that of the delivered bytes, nothing delivered is
// lost, and linear samples that no codec takes are converted all the same.

#include "ConverterFixture.h"
#include "stream/SampleRounding.h"

namespace corvina::test {
namespace {

TEST_F(Converter, a_record_of_another_width_than_is_delivered_is_replaced) {
    for (const WORD bits : std::initializer_list<WORD>{4, 8, 24, 32, 64}) {
        converter_.reset();
        fakeAcm.reset();
        MemorySource source(pcm(500, 1, bits), noise(1500));
        source.force16Bit = true;
        source.deliveredBits = WORD{16};
        fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
            const WAVEFORMATEX& given = *fakeAcm.openings.back().source;
            EXPECT_EQ(given.wBitsPerSample, 16);
            EXPECT_EQ(given.nBlockAlign, 2);
            EXPECT_EQ(given.nAvgBytesPerSec, 1000u);
            std::memcpy(header.pbDst, header.pbSrc, header.cbSrcLength);
            header.cbSrcLengthUsed = header.cbDstLengthUsed = header.cbSrcLength;
            return MMRESULT{0};
        };
        ASSERT_TRUE(start(source));
        EXPECT_EQ(pullAll(100), noise(1500));
        EXPECT_EQ(source.format.wBitsPerSample, bits);
    }
}

TEST_F(Converter, a_record_of_the_delivered_width_is_given_as_the_source_holds_it) {
    MemorySource source(pcm(500, 1, 16), noise(1500));
    source.force16Bit = true;
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.openings.back().source, &source.format);
}

TEST_F(Converter, the_source_is_read_in_whole_blocks) {
    MemorySource source(pcm(500, 1, 24), noise(3000));
    fakeAcm.sourceSize = [](DWORD) { return DWORD{1000}; }; // no multiple of 3
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        header.cbSrcLengthUsed = header.cbSrcLength - 300; // leaves blocks over
        header.cbDstLengthUsed = 100;
        return MMRESULT{0};
    };
    ASSERT_TRUE(start(source));
    pull(100);
    EXPECT_EQ(source.position, 999u);
    pull(100);
    EXPECT_EQ(source.position, 999u + 699u);
    EXPECT_EQ(source.position % 3, 0u);
}

// A codec for compressed sound may fill the output before it has used its last bytes.
TEST_F(Converter, what_a_codec_leaves_at_the_end_of_the_data_is_converted_too) {
    MemorySource source(pcm(1000, 1, 8), noise(800));
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        return copySound(header, std::min(header.cbSrcLength, DWORD{150}));
    };
    ASSERT_TRUE(start(source));
    Bytes heard;
    while (!converter_->Exhausted()) {
        const std::int32_t got = pull(50);
        heard.insert(heard.end(), pulled_.begin(), pulled_.begin() + got);
    }
    EXPECT_EQ(heard, noise(800));
}

TEST_F(Converter, one_whole_block_that_a_codec_leaves_at_the_end_is_converted_too) {
    MemorySource source(pcm(500, 1, 16), noise(500));
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        return copySound(header, std::min(header.cbSrcLength, DWORD{498}));
    };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pull(498), 498);
    EXPECT_EQ(pull(2), 2);
}

// A codec that takes 10 bytes for each buffer that it fills, and holds back as many full buffers
// as it is given.
class HoldingBack : public Converter {
protected:
    // The buffers that come after the source has ended.
    int buffersAtEnd(WORD tag, int before, int heldBack) {
        MemorySource source(pcm(500, 1, 16), noise(10u * static_cast<unsigned>(before)));
        source.format.wFormatTag = tag;
        fakeAcm.sourceSize = [](DWORD) { return DWORD{10}; };
        fakeAcm.conversion = [&](ACMSTREAMHEADER& header) {
            header.cbSrcLengthUsed = header.cbSrcLength;
            if (header.cbSrcLength == 0 && --heldBack < 0)
                return MMRESULT{0};
            header.cbDstLengthUsed = header.cbDstLength;
            return MMRESULT{0};
        };
        EXPECT_TRUE(start(source));
        int buffers = 0;
        while (pull(500) == 500)
            ++buffers;
        return buffers - before;
    }
};

TEST_F(HoldingBack, decoded_sound_at_the_end_of_the_data_comes_out) {
    EXPECT_EQ(buffersAtEnd(WAVE_FORMAT_ADPCM, 5, 3), 3);
}

TEST_F(HoldingBack, as_much_again_as_came_before_is_believed) {
    EXPECT_EQ(buffersAtEnd(WAVE_FORMAT_ADPCM, 200, 200), 200);
}

TEST_F(HoldingBack, for_ever_ends) {
    const int buffers = buffersAtEnd(WAVE_FORMAT_ADPCM, 10, 100'000);
    EXPECT_GE(buffers, 10);
    EXPECT_LE(buffers, 10 + 64);
}

TEST_F(HoldingBack, is_not_expected_of_plain_samples) {
    EXPECT_EQ(buffersAtEnd(WAVE_FORMAT_PCM, 5, 3), 0);
}

TEST_F(Converter, a_codec_that_takes_less_than_a_block_at_a_time_gets_all_of_it) {
    MemorySource source(pcm(1000, 1, 8), noise(1000));
    source.format.wFormatTag = WAVE_FORMAT_ADPCM;
    source.format.nBlockAlign = 256;
    fakeAcm.sourceSize = [](DWORD) { return DWORD{100}; };
    ASSERT_TRUE(start(source));
    EXPECT_EQ(pullAll(100), noise(1000));
    EXPECT_EQ(source.asked.front(), 100);
}

TEST_F(Converter, a_block_that_is_not_whole_at_the_end_is_left_alone) {
    MemorySource source(pcm(500, 1, 16), noise(501));
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) {
        header.cbSrcLengthUsed = header.cbDstLengthUsed = header.cbSrcLength / 2 * 2;
        return MMRESULT{0};
    };
    ASSERT_TRUE(start(source));
    pullAll(100);
    EXPECT_EQ(fakeAcm.conversions.size(), 2u);
}

TEST_F(Converter, after_a_restart_8_bit_samples_are_silent_at_their_middle) {
    MemorySource source(pcm(1000, 1, 8), noise(1000));
    ASSERT_TRUE(start(source));
    pull(100);
    converter_->ResetACM();
    EXPECT_EQ(pull(400), 400);
    EXPECT_EQ(pulled_, Bytes(400, 0x80));
}

WAVEFORMATEX floating(DWORD rate, WORD channels) {
    WAVEFORMATEX record = pcm(rate, channels, 32);
    record.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    return record;
}

Bytes halfScale(std::size_t samples) {
    Bytes bytes(samples * sizeof(float));
    for (std::size_t i = 0; i < samples; ++i) {
        const float half = 0.5F;
        std::memcpy(bytes.data() + i * sizeof half, &half, sizeof half);
    }
    return bytes;
}

Bytes samplesOf(std::int16_t sample, std::size_t count) {
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(sample));
        bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
    }
    return bytes;
}

TEST_F(Converter, floating_point_that_every_codec_refuses_becomes_16_bits) {
    MemorySource source(floating(500, 1), halfScale(1300));
    fakeAcm.refusedBits = {8, 16};
    ASSERT_TRUE(start(source));
    EXPECT_EQ(fakeAcm.openings.size(), 3u) << "the codecs are asked first";
    EXPECT_EQ(converter_->OutputBitsPerSample(), 16);
    EXPECT_EQ(pullAll(100), samplesOf(16384, 1300));
    EXPECT_TRUE(converter_->Exhausted());
}

TEST_F(Converter, floating_point_becomes_16_bits_also_where_the_caller_forces_them) {
    MemorySource source(floating(500, 1), halfScale(300));
    fakeAcm.refusedBits = {8, 16};
    ASSERT_TRUE(start(source, true));
    EXPECT_EQ(fakeAcm.openings.size(), 1u) << "no other width is asked for";
    EXPECT_EQ(pullAll(100), samplesOf(16384, 300));
}

TEST_F(Converter, what_it_converts_itself_goes_on_after_a_restart_and_reaches_the_observer) {
    MemorySource source(floating(500, 1), halfScale(1300));
    fakeAcm.refusedBits = {8, 16};
    ASSERT_TRUE(start(source));
    pullAll(100);
    source.position = 0;
    converter_->ResetACM();
    EXPECT_EQ(pullAll(100), samplesOf(16384, 1300));
    EXPECT_FALSE(observer_.blocks.empty());
}

TEST_F(Converter, plain_samples_that_every_codec_refuses_are_refused) {
    fakeAcm.refusedBits = {8, 16};
    for (const WORD bits : std::initializer_list<WORD>{8, 16}) {
        MemorySource source(pcm(500, 2, bits), noise(100));
        EXPECT_FALSE(start(source));
    }
}

TEST_F(Converter, more_than_two_channels_that_every_codec_refuses_come_out_as_they_are) {
    MemorySource source(pcm(500, 6, 16), noise(6000));
    fakeAcm.refusedBits = {8, 16};
    ASSERT_TRUE(start(source));
    EXPECT_EQ(converter_->OutputChannels(), 6);
    EXPECT_EQ(pullAll(100), noise(6000));
}

TEST_F(Converter, more_than_two_channels_of_plain_samples_are_left_to_no_codec_that_takes_them) {
    for (const WORD channels : std::initializer_list<WORD>{3, 6}) {
        converter_.reset();
        fakeAcm.reset();
        MemorySource source(pcm(500, channels, 16), noise(6000));
        ASSERT_TRUE(start(source));
        EXPECT_EQ(pullAll(100), noise(6000));
        EXPECT_EQ(fakeAcm.conversions.size(), 0u);
        EXPECT_EQ(fakeAcm.openStreams, 0);
    }
}

TEST_F(Converter, what_else_a_codec_takes_is_left_to_it) {
    for (const WORD channels : std::initializer_list<WORD>{2, 6}) {
        converter_.reset();
        fakeAcm.reset();
        MemorySource source(floating(500, channels), halfScale(1200));
        ASSERT_TRUE(start(source));
        pull(100);
        EXPECT_EQ(fakeAcm.conversions.size(), 1u);
    }
}

TEST_F(Converter, more_than_two_channels_are_mixed_on_demand) {
    for (const bool managed : {true, false}) {
        converter_.reset();
        fakeAcm.reset();
        MemorySource source(pcm(500, 4, 16), samplesOf(1000, 4 * 700));
        if (!managed)
            fakeAcm.refusedBits = {8, 16};
        ASSERT_TRUE(start(source));
        ASSERT_TRUE(converter_->mixToStereo());
        EXPECT_EQ(fakeAcm.openStreams, 0);
        EXPECT_EQ(converter_->OutputChannels(), 2);
        const Bytes heard = pullAll(100);
        EXPECT_EQ(heard.size(), 700u * 4);
        std::int16_t first = 0;
        std::memcpy(&first, heard.data(), sizeof first);
        EXPECT_NEAR(first, 1000, 1);
        source.position = 0;
        converter_->ResetACM();
        EXPECT_EQ(converter_->OutputChannels(), 2);
        EXPECT_EQ(pullAll(100).size(), 700u * 4);
    }
}

TEST_F(Converter, two_channels_are_not_mixed) {
    MemorySource source(pcm(500, 2, 16), noise(100));
    ASSERT_TRUE(start(source));
    EXPECT_FALSE(converter_->mixToStereo());
    EXPECT_FALSE(cPCM(fakeAcmApi).mixToStereo());
}

} // namespace
} // namespace corvina::test
