#include "stream/LinearConversion.h"

#include "support/WavBytes.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include <ks.h>
#include <ksmedia.h>

namespace corvina::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using Samples = std::vector<std::int16_t>;

WAVEFORMATEXTENSIBLE extensible(WORD channels, WORD bits, WORD validBits, DWORD mask,
                                WORD tag = WAVE_FORMAT_PCM) {
    WAVEFORMATEXTENSIBLE record{};
    record.Format = pcm(48000, channels, bits);
    record.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    record.Format.cbSize = sizeof record - sizeof record.Format;
    record.Samples.wValidBitsPerSample = validBits;
    record.dwChannelMask = mask;
    record.SubFormat = {tag, 0, 0x10, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    return record;
}

LinearFormat plain(WORD channels, WORD bits) {
    return linearFormat(pcm(48000, channels, bits)).value();
}

LinearFormat floating(WORD channels, WORD bits) {
    WAVEFORMATEX record = pcm(48000, channels, bits);
    record.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    return linearFormat(record).value();
}

template <typename Number>
Bytes bytesOf(const std::vector<Number>& numbers) {
    const auto* first = reinterpret_cast<const std::uint8_t*>(numbers.data());
    return {first, first + numbers.size() * sizeof(Number)};
}

Samples converted(const LinearFormat& format, Bytes source, bool mixed = false) {
    LinearConversion conversion(format, mixed);
    Bytes output(source.size() * 4);
    const auto done = conversion.convert(source, output, true, true);
    EXPECT_EQ(done->used, source.size());
    Samples samples(done->produced / 2);
    std::memcpy(samples.data(), output.data(), done->produced);
    return samples;
}

TEST(LinearFormat, an_extensible_record_says_valid_bits_and_places) {
    const auto record = extensible(6, 32, 24, KSAUDIO_SPEAKER_5POINT1);
    const std::optional<LinearFormat> format = linearFormat(record.Format);
    ASSERT_TRUE(format);
    EXPECT_EQ(format->sampleBytes, 4);
    EXPECT_EQ(format->validBits, 24);
    EXPECT_EQ(format->channelMask, KSAUDIO_SPEAKER_5POINT1);
    EXPECT_FALSE(format->isFloat);
    EXPECT_TRUE(linearFormat(extensible(2, 32, 32, 3, WAVE_FORMAT_IEEE_FLOAT).Format)->isFloat);
}

TEST(LinearFormat, compressed_and_contradictory_records_have_none) {
    EXPECT_FALSE(linearFormat(extensible(2, 8, 8, 3, WAVE_FORMAT_MULAW).Format));
    EXPECT_FALSE(linearFormat(extensible(2, 16, 17, 3).Format));
    auto foreign = extensible(2, 16, 16, 3);
    foreign.SubFormat.Data4[7] = 0;
    EXPECT_FALSE(linearFormat(foreign.Format));
    auto cut = extensible(2, 16, 16, 3);
    cut.Format.cbSize = 21;
    EXPECT_FALSE(linearFormat(cut.Format));
    WAVEFORMATEX record = pcm(48000, 2, 16);
    record.nBlockAlign = 5;
    EXPECT_FALSE(linearFormat(record));
    record = pcm(48000, 2, 16);
    record.nChannels = 0;
    EXPECT_FALSE(linearFormat(record));
    record = pcm(0, 2, 16);
    EXPECT_FALSE(linearFormat(record));
    EXPECT_FALSE(linearFormat(pcm(48000, 1, 64)));
    record = pcm(48000, 1, 24);
    record.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    EXPECT_FALSE(linearFormat(record));
    record.wFormatTag = WAVE_FORMAT_ADPCM;
    EXPECT_FALSE(linearFormat(record));
}

TEST(LinearFormat, has_no_more_channels_than_a_mask_has_places) {
    EXPECT_TRUE(linearFormat(pcm(48000, 32, 16)));
    EXPECT_FALSE(linearFormat(pcm(48000, 33, 16)));
}

TEST(LinearConversion, samples_that_16_bits_hold_come_out_exactly) {
    EXPECT_THAT(converted(plain(1, 8), {0, 64, 128, 192, 255}),
                ElementsAre(-32768, -16384, 0, 16384, 32512));
    EXPECT_THAT(converted(plain(1, 16), bytesOf<std::int16_t>({0, 1, -1, 32767, -32768})),
                ElementsAre(0, 1, -1, 32767, -32768));
    EXPECT_THAT(converted(plain(1, 24), {0, 1, 0, 0, 0xFF, 0xFF, 0, 0xFF, 0x7F, 0, 0, 0x80}),
                ElementsAre(1, -1, 32767, -32768));
    EXPECT_THAT(converted(plain(1, 32), bytesOf<std::int32_t>({0, 65536, -65536})),
                ElementsAre(0, 1, -1));
    EXPECT_THAT(converted(floating(1, 32), bytesOf<float>({0.0F, 0.5F, -1.0F, 1.0F / 32768})),
                ElementsAre(0, 16384, -32768, 1));
    EXPECT_THAT(converted(floating(1, 64), bytesOf<double>({0.0, 0.5, -1.0})),
                ElementsAre(0, 16384, -32768));
}

TEST(LinearConversion, bits_that_are_not_valid_do_not_count) {
    const auto format = linearFormat(extensible(1, 32, 16, 4).Format).value();
    EXPECT_THAT(converted(format, bytesOf<std::int32_t>({0x0001FFFF, -1})), ElementsAre(1, -1));
}

TEST(LinearConversion, what_is_too_loud_becomes_the_loudest_and_what_is_no_number_silence) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    EXPECT_THAT(converted(floating(1, 32), bytesOf<float>({1.0F, 1.5F, 1e30F, infinite})),
                Each(32767));
    EXPECT_THAT(converted(floating(1, 32), bytesOf<float>({-1.5F, -1e30F, -infinite})),
                Each(-32768));
    EXPECT_THAT(converted(floating(1, 32), bytesOf<float>({std::nanf("")})), ElementsAre(0));
    EXPECT_THAT(converted(plain(1, 24), Bytes(3 * 1000, 0xFF)),
                Each(testing::AllOf(testing::Ge(-2), testing::Le(1))));
    EXPECT_THAT(converted(plain(1, 32), bytesOf(std::vector<std::int32_t>(1000, 0x7FFFFFFF))),
                Each(testing::Ge(32765)));
}

// Four at a time where there are so many, the rest one by one.
TEST(LinearConversion, many_samples_come_out_as_single_ones_do) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    for (const std::size_t count : {1u, 3u, 4u, 5u, 511u, 512u, 513u, 2050u}) {
        EXPECT_THAT(converted(floating(1, 32), bytesOf(std::vector<float>(count, none))), Each(0));
        EXPECT_THAT(converted(floating(1, 32), bytesOf(std::vector<float>(count, -1.5F))),
                    Each(-32768));
        EXPECT_THAT(converted(floating(1, 32), bytesOf(std::vector<float>(count, 1.0F))),
                    Each(32767));
        std::vector<std::int32_t> exact(count);
        Samples expected(count);
        Bytes narrow;
        for (std::size_t index = 0; index < count; ++index) {
            expected[index] = static_cast<std::int16_t>(index * 7919);
            exact[index] = std::int32_t{expected[index]} * 65536;
            const auto upper = static_cast<std::uint16_t>(expected[index]);
            narrow.insert(narrow.end(), {0, static_cast<std::uint8_t>(upper & 0xFF),
                                         static_cast<std::uint8_t>(upper >> 8)});
        }
        EXPECT_EQ(converted(plain(1, 32), bytesOf(exact)), expected) << count;
        EXPECT_EQ(converted(plain(1, 24), narrow), expected) << count;
    }
}

// The mean of many roundings is the sample itself, and the error reaches one and a half steps and
// no further, as triangular noise has it.
TEST(LinearConversion, what_lies_between_two_steps_is_rounded_with_triangular_noise) {
    constexpr int count = 100'000;
    constexpr double between = 100.25;
    const auto samples = converted(
        plain(1, 32),
        bytesOf(std::vector<std::int32_t>(count, static_cast<std::int32_t>(between * 65536))));
    double sum = 0;
    double squares = 0;
    for (const std::int16_t sample : samples) {
        const double error = sample - between;
        EXPECT_LE(std::abs(error), 1.5);
        sum += error;
        squares += error * error;
    }
    EXPECT_NEAR(sum / count, 0, 0.01);
    // Triangular noise and the rounding itself: a sixth and a twelfth of a step squared.
    EXPECT_NEAR(squares / count, 0.25, 0.01);
}

TEST(LinearConversion, a_few_samples_at_a_time_have_triangular_noise_too) {
    constexpr int count = 20'000;
    constexpr int few = 5;
    constexpr double between = 100.25;
    LinearConversion conversion(plain(1, 32), false);
    Bytes source =
        bytesOf(std::vector<std::int32_t>(few, static_cast<std::int32_t>(between * 65536)));
    double sum = 0;
    double squares = 0;
    Samples samples(few);
    for (int piece = 0; piece < count; ++piece) {
        std::ranges::fill(samples, std::int16_t{0});
        const std::span output(reinterpret_cast<std::uint8_t*>(samples.data()), 2u * few);
        ASSERT_EQ(conversion.convert(source, output, false, false)->produced, output.size());
        for (const std::int16_t sample : samples) {
            sum += sample - between;
            squares += (sample - between) * (sample - between);
        }
    }
    EXPECT_NEAR(sum / (count * few), 0, 0.01);
    EXPECT_NEAR(squares / (count * few), 0.25, 0.01);
}

TEST(LinearConversion, no_bytes_become_none) {
    for (const WORD bits : {WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        LinearConversion conversion(plain(1, bits), false);
        Bytes output(64);
        const auto done = conversion.convert({}, output, false, true);
        EXPECT_EQ(done->used, 0u) << bits;
        EXPECT_EQ(done->produced, 0u) << bits;
    }
}

// Of eight samples at a time, four generators make the noise in turn.
Samples roundedOneByOne(const std::vector<std::int32_t>& source) {
    std::uint32_t states[] = {0x05491333, 0x159A55E5, 0x075BCD15, 0x1F123BB5};
    Samples rounded;
    for (std::size_t index = 0; index < source.size(); ++index) {
        std::uint32_t& noise = states[index % 4];
        noise = nextNoise(noise);
        const std::int64_t added = std::int64_t{noise & 0xFFFF} + (noise >> 16) - 0x7FFF;
        const bool exact = (source[index] & 0xFFFF) == 0;
        const std::int64_t sum = (source[index] + (exact ? 0 : added)) >> 16;
        rounded.push_back(static_cast<std::int16_t>(
            std::clamp<std::int64_t>(sum, std::numeric_limits<std::int16_t>::min(),
                                     std::numeric_limits<std::int16_t>::max())));
    }
    return rounded;
}

TEST(LinearConversion, the_noise_is_the_same_however_many_samples_are_converted_at_once) {
    std::mt19937 random(1);
    std::vector<std::int32_t> source(10'000);
    for (std::size_t index = 0; index < source.size(); ++index) {
        const auto any = static_cast<std::int32_t>(random());
        constexpr std::int32_t loudest = std::numeric_limits<std::int32_t>::max();
        const std::int32_t choices[] = {any, any & ~0xFFFF, loudest - (any & 0x1FFFF),
                                        -loudest - 1 + (any & 0x1FFFF)};
        source[index] = choices[index / 16 % 4];
    }
    const Samples expected = roundedOneByOne(source);
    EXPECT_EQ(converted(plain(1, 32), bytesOf(source)), expected);
    LinearConversion conversion(plain(1, 32), false);
    Samples inPieces;
    for (std::size_t done = 0; done < source.size();) {
        const std::size_t count = std::min<std::size_t>(8 * (random() % 400), source.size() - done);
        Bytes piece =
            bytesOf(std::vector(source.begin() + static_cast<std::ptrdiff_t>(done),
                                source.begin() + static_cast<std::ptrdiff_t>(done + count)));
        Bytes output(count * sizeof(std::int16_t));
        ASSERT_EQ(conversion.convert(piece, output, false, false)->produced, output.size());
        inPieces.resize(done + count);
        if (count > 0)
            std::memcpy(&inPieces[done], output.data(), output.size());
        done += count;
    }
    EXPECT_EQ(inPieces, expected);
}

TEST(LinearConversion, only_whole_blocks_that_fit_are_converted) {
    LinearConversion conversion(plain(2, 24), false);
    Bytes source(20);
    Bytes output(9);
    const auto done = conversion.convert(source, output, true, false);
    EXPECT_EQ(done->used, 12u);
    EXPECT_EQ(done->produced, 8u);
    EXPECT_EQ(conversion.sourceBytes(4000).value(), 6000u);
}

TEST(LinearConversion, more_than_two_channels_become_two) {
    const auto format = linearFormat(extensible(6, 16, 16, KSAUDIO_SPEAKER_5POINT1).Format).value();
    LinearConversion conversion(format, true);
    EXPECT_EQ(conversion.outputChannels(), 2);
    EXPECT_EQ(LinearConversion(format, false).outputChannels(), 6);
    const auto loud = converted(format, bytesOf(std::vector<std::int16_t>(600, 32767)), true);
    EXPECT_EQ(loud.size(), 200u);
    EXPECT_THAT(loud, Each(testing::Ge(32764)));
    const auto left = converted(format, bytesOf<std::int16_t>({24142, 0, 0, 0, 0, 0}), true);
    EXPECT_NEAR(left[0], 10000, 2);
    EXPECT_EQ(left[1], 0);
}

TEST(LinearConversion, three_channels_become_two_block_by_block) {
    const auto mixed =
        converted(plain(3, 16), bytesOf<std::int16_t>({17070, 0, 0, 0, 8535, 0, 0, 0, 0}), true);
    ASSERT_EQ(mixed.size(), 6u);
    EXPECT_NEAR(mixed[0], 10000, 2);
    EXPECT_EQ(mixed[1], 0);
    EXPECT_EQ(mixed[2], 0);
    EXPECT_NEAR(mixed[3], 5000, 2);
    EXPECT_EQ(mixed[4], 0);
    EXPECT_EQ(mixed[5], 0);
}

TEST(LinearConversion, two_channels_are_not_mixed) {
    EXPECT_THAT(converted(plain(2, 16), bytesOf<std::int16_t>({1, 2}), true), ElementsAre(1, 2));
}

} // namespace
} // namespace corvina::test
