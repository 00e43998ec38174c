// The copy of the samples that were sent last.

#include "player/SentSamples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAreArray;

constexpr PlayedFormat stereo{.sampleRate = 44100, .channels = 2, .bits = 16};

TEST(SentSamples, are_none_at_first) {
    const SentSamples sent;
    SampleBlock block;
    EXPECT_EQ(sent.data(), nullptr);
    EXPECT_FALSE(sent.copyTo(block, stereo));
}

TEST(SentSamples, of_silence_can_be_read_in_memory_but_are_no_block) {
    const SentSamples sent = SentSamples::silence();
    SampleBlock block;
    block.samples = {7};
    ASSERT_NE(sent.data(), nullptr);
    EXPECT_THAT(std::span(sent.data(), 1024), Each(0));
    EXPECT_FALSE(sent.copyTo(block, stereo));
    EXPECT_THAT(block.samples, ElementsAreArray({7}));
}

TEST(SentSamples, have_another_address_each_time) {
    SentSamples sent = SentSamples::silence();
    const std::vector<std::int16_t> samples(4000, 5);
    for (int refill = 0; refill < 5; ++refill) {
        const std::int16_t* const before = sent.data();
        sent.set(samples);
        EXPECT_NE(sent.data(), before);
        EXPECT_NE(sent.data(), samples.data());
        EXPECT_THAT(std::span(sent.data(), samples.size()), ElementsAreArray(samples));
    }
}

TEST(SentSamples, are_a_block_with_their_format) {
    SentSamples sent;
    const std::vector<std::int16_t> samples(4000, -300);
    sent.set(samples);
    SampleBlock block;
    ASSERT_TRUE(sent.copyTo(block, {.sampleRate = 8000, .channels = 1, .bits = 16}));
    EXPECT_EQ(block.sampleRate, 8000);
    EXPECT_EQ(block.channels, 1);
    EXPECT_EQ(block.samples, samples);
}

TEST(SentSamples, of_8_bits_are_widened) {
    SentSamples sent;
    sent.set(std::vector<std::int16_t>(4000, static_cast<std::int16_t>(0xFF00)));
    SampleBlock block;
    ASSERT_TRUE(sent.copyTo(block, {.sampleRate = 8000, .channels = 1, .bits = 8}));
    ASSERT_EQ(block.samples.size(), 8000u);
    for (std::size_t i = 0; i < block.samples.size(); i += 2) {
        EXPECT_EQ(block.samples[i], -32768); // the byte 0
        EXPECT_EQ(block.samples[i + 1], 32512);
    }
}

} // namespace
} // namespace corvina::test
