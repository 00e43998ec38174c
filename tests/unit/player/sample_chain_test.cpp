// The chain of equalizer, limiter and gains by itself.

#include "player/SampleChain.h"
#include "support/EqualizerCurve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {
namespace {

constexpr PlayedFormat stereo{.sampleRate = 44100, .channels = 2, .bits = 16};
using Samples = std::vector<std::int16_t>;

Samples sine(double frequency, double amplitude, std::size_t frames) {
    Samples samples;
    for (std::size_t i = 0; i < frames; ++i) {
        const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / 44100;
        const auto sample = static_cast<std::int16_t>(std::lround(amplitude * std::sin(angle)));
        samples.insert(samples.end(), 2, sample);
    }
    return samples;
}

std::span<std::uint8_t> bytesOf(Samples& samples) {
    return {reinterpret_cast<std::uint8_t*>(samples.data()), samples.size() * 2};
}

// The gain in decibels of a tone, from the energy behind the first half.
double gainOf(SampleChain& chain, double frequency, double amplitude = 3000) {
    Samples samples = sine(frequency, amplitude, 44100);
    const Samples original = samples;
    chain.process(bytesOf(samples));
    double before = 0;
    double after = 0;
    for (std::size_t i = samples.size() / 2; i < samples.size(); ++i) {
        before += 1.0 * original[i] * original[i];
        after += 1.0 * samples[i] * samples[i];
    }
    return 10 * std::log10(after / before);
}

TEST(SampleChain, with_neutral_settings_leaves_every_sample_alone) {
    SampleChain chain(stereo, {});
    Samples samples{INT16_MIN, INT16_MAX, 1, -1, 0, 12345};
    const Samples original = samples;
    chain.process(bytesOf(samples));
    EXPECT_EQ(samples, original);
    EXPECT_TRUE(chain.neutral());
}

TEST(SampleChain, has_each_band_within_half_a_decibel_of_its_curve) {
    for (std::size_t band = 0; band < SoundSettings::bands; ++band)
        for (const float gain : {12.0F, -12.0F, 5.0F}) {
            SoundSettings settings;
            settings.bandGains[band] = gain;
            const double centre = 31.25 * std::pow(2, static_cast<double>(band));
            for (const double frequency : {centre, centre * 1.4, centre / 1.4, 1000.0})
                if (frequency < 20000) {
                    SampleChain chain(stereo, settings);
                    EXPECT_NEAR(gainOf(chain, frequency),
                                equalizerCurve(settings.bandGains, frequency), 0.5)
                        << "band " << band << " at " << frequency << " Hz";
                }
            SampleChain chain(stereo, settings);
            EXPECT_NEAR(gainOf(chain, centre), gain, 0.5);
        }
}

TEST(SampleChain, limits_softly_and_never_wraps_around) {
    SoundSettings settings;
    settings.bandGains.fill(12.0F);
    SampleChain chain(stereo, settings);
    Samples samples = sine(1000, 32767, 8820);
    chain.process(bytesOf(samples));
    for (std::size_t i = 2; i < samples.size(); ++i)
        if (std::abs(samples[i]) > 20000 && std::abs(samples[i - 2]) > 20000) {
            ASSERT_EQ(samples[i] > 0, samples[i - 2] > 0) << i;
        }
    EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 30000);
}

TEST(SampleChain, reaches_a_new_volume_over_20_ms_without_a_jump) {
    SampleChain chain(stereo, {});
    SoundSettings quiet;
    quiet.volume = 0;
    Samples samples(2 * 2000, 10000);
    chain.setTarget(quiet);
    chain.process(bytesOf(samples));
    EXPECT_EQ(samples.front(), 10000);
    for (std::size_t i = 2; i < samples.size(); ++i)
        ASSERT_LE(std::abs(samples[i] - samples[i - 2]), 13) << i;
    EXPECT_GT(samples[2 * 800], 0);
    EXPECT_EQ(samples[2 * 882], 0);
}

TEST(SampleChain, changes_the_equalizer_without_a_jump_larger_than_the_signals_own) {
    SampleChain chain(stereo, {});
    Samples samples = sine(1000, 6000, 4410);
    SoundSettings loud;
    loud.bandGains[5] = 6.0F;
    auto bytes = bytesOf(samples);
    chain.process(bytes.first(bytes.size() / 2));
    chain.setTarget(loud);
    chain.process(bytes.last(bytes.size() / 2));
    // The steepest step of the louder tone.
    const double steepest = 2 * 6000 * 2 * std::numbers::pi * 1000 / 44100 * 1.05;
    for (std::size_t i = 2; i < samples.size(); ++i)
        ASSERT_LE(std::abs(samples[i] - samples[i - 2]), steepest) << i;
}

// The largest step of the signal itself with 12 dB more is allowed, and two of rounding.
void expectNoJump(const Samples& original, const Samples& samples, double louder) {
    int own = 0;
    for (std::size_t i = 2; i < original.size(); ++i)
        own = std::max(own, std::abs(original[i] - original[i - 2]));
    for (std::size_t i = 2; i < samples.size(); ++i)
        ASSERT_LE(std::abs(samples[i] - samples[i - 2]), own * louder + 15) << i;
}

TEST(SampleChain, begins_and_ends_each_band_without_a_jump_and_is_neutral_afterwards) {
    for (std::size_t band = 0; band < SoundSettings::bands; ++band)
        for (const double frequency : {0.0, 20.0, 100.0, 31.25 * std::pow(2, band)}) {
            SCOPED_TRACE("band " + std::to_string(band) + ", " + std::to_string(frequency) + " Hz");
            Samples samples = sine(std::min(frequency, 18000.0), 12000, 44100);
            if (frequency == 0.0)
                std::fill(samples.begin(), samples.end(), 12000);
            const Samples original = samples;
            const auto bytes = bytesOf(samples);
            SampleChain chain(stereo, {});
            chain.process(bytes.first(4000));
            SoundSettings settings;
            settings.bandGains[band] = -12.0F;
            chain.setTarget(settings);
            chain.process(bytes.subspan(4000, 40000));
            chain.setTarget({});
            chain.process(bytes.subspan(44000, 4000));
            EXPECT_FALSE(chain.neutral() && band == 0);
            chain.process(bytes.subspan(48000));
            EXPECT_TRUE(chain.neutral());
            EXPECT_TRUE(std::equal(samples.end() - 20000, samples.end(), original.end() - 20000));
            expectNoJump(original, samples, 1.01);
        }
}

TEST(SampleChain, begins_and_ends_to_limit_without_a_jump) {
    Samples samples = sine(50, 32767, 22050);
    const Samples original = samples;
    const auto bytes = bytesOf(samples);
    SampleChain chain(stereo, {});
    SoundSettings settings;
    settings.bandGains[9] = 0.5F; // which this tone does not notice
    // Both at the top of a wave, where the limiter takes away most.
    chain.process(bytes.first(4 * 5513));
    chain.setTarget(settings);
    chain.process(bytes.subspan(4 * 5513, 4 * 4410));
    EXPECT_LT(samples[2 * 8159], 32500) << "it limits";
    chain.setTarget({});
    chain.process(bytes.subspan(4 * 9923));
    expectNoJump(original, samples, 1.01);
}

// A low filter feeds back what was rounded a thousand times.
TEST(SampleChain, adds_no_noise_in_a_low_band) {
    SoundSettings settings;
    settings.bandGains[0] = 12.0F;
    SampleChain chain(stereo, settings);
    Samples samples = sine(1000, 8000, 44100);
    const BiquadCoefficients c = peakingFilter(bandFrequency(0), 44100, 12);
    std::vector<double> expected;
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        const double x = samples[i];
        expected.push_back(c.b0 * x + c.b1 * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2);
        x2 = std::exchange(x1, x);
        y2 = std::exchange(y1, expected.back());
    }
    chain.process(bytesOf(samples));
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_NEAR(samples[2 * i], expected[i], 0.6) << i;
}

TEST(SampleChain, goes_on_in_a_copy_as_the_original_would) {
    SoundSettings settings;
    settings.bandGains.fill(3.0F);
    SampleChain chain(stereo, settings);
    Samples first = sine(440, 9000, 1000);
    chain.process(bytesOf(first));
    SampleChain copy = chain;
    Samples one = sine(440, 9000, 1000);
    Samples other = one;
    chain.process(bytesOf(one));
    copy.process(bytesOf(other));
    EXPECT_EQ(one, other);
}

TEST(SampleChain, has_no_balance_in_mono_and_changes_8_bit_sound) {
    SoundSettings settings;
    settings.balance = 100;
    settings.volume = 50;
    SampleChain chain({.sampleRate = 8000, .channels = 1, .bits = 8}, settings);
    std::vector<std::uint8_t> bytes{0x80, 0xFF, 0x00, 0xC0, 0x40};
    chain.process(bytes);
    const std::vector<std::uint8_t> expected{0x80, 0xA0, 0x60, 0x90, 0x70};
    EXPECT_EQ(bytes, expected);
}

TEST(SampleChain, leaves_an_8_bit_channel_alone_whose_gain_is_1) {
    SoundSettings settings;
    settings.balance = -50; // left as it is, right half as loud
    SampleChain chain({.sampleRate = 8000, .channels = 2, .bits = 8}, settings);
    std::vector<std::uint8_t> bytes;
    for (int value = 0; value < 256; ++value)
        bytes.insert(bytes.end(), 2, static_cast<std::uint8_t>(value));
    chain.process(bytes);
    for (std::size_t value = 0; value < 256; ++value) {
        EXPECT_EQ(bytes[2 * value], value);
        EXPECT_NEAR(bytes[2 * value + 1], 0x80 + (static_cast<int>(value) - 0x80) / 2.0, 0.5);
    }
}

TEST(SampleChain, rounds_8_bit_sound_to_the_nearest_step) {
    SoundSettings settings;
    settings.volume = 15; // a gain of 0.0225
    SampleChain chain({.sampleRate = 8000, .channels = 1, .bits = 8}, settings);
    std::vector<std::uint8_t> bytes{0x80 + 22, 0x80 + 23, 0x80 - 22, 0x80 - 23};
    chain.process(bytes);
    const std::vector<std::uint8_t> expected{0x80, 0x81, 0x80, 0x7F};
    EXPECT_EQ(bytes, expected);
}

TEST(SampleChain, never_wraps_8_bit_sound_around) {
    SoundSettings settings;
    settings.bandGains.fill(12.0F);
    SampleChain chain({.sampleRate = 44100, .channels = 1, .bits = 8}, settings);
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 4410; ++i)
        bytes.push_back(static_cast<std::uint8_t>(
            std::lround(0x80 + 120 * std::sin(2 * std::numbers::pi * i / 44.1))));
    chain.process(bytes);
    EXPECT_EQ(*std::max_element(bytes.begin(), bytes.end()), 0xFF);
    for (std::size_t i = 1; i < bytes.size(); ++i)
        ASSERT_LT(std::abs(bytes[i] - bytes[i - 1]), 0xC0) << i;
}

TEST(SampleChain, balances_the_first_two_channels_alone) {
    SoundSettings settings;
    settings.balance = -50;
    SampleChain chain({.sampleRate = 44100, .channels = 4, .bits = 16}, settings);
    Samples samples(8, 10000);
    chain.process(bytesOf(samples));
    EXPECT_EQ(samples, (Samples{10000, 5000, 10000, 10000, 10000, 5000, 10000, 10000}));
}

TEST(SampleChain, equalizes_on_while_another_setting_is_reached) {
    SoundSettings settings;
    settings.bandGains[0] = 12.0F;
    SampleChain chain(stereo, settings);
    SampleChain other = chain;
    Samples samples = sine(31.25, 6000, 2000);
    Samples expected = samples;
    other.process(bytesOf(expected));
    const auto bytes = bytesOf(samples);
    chain.process(bytes.first(4 * 960));
    settings.balance = -40; // which the left channel does not notice
    chain.setTarget(settings);
    chain.process(bytes.subspan(4 * 960));
    for (std::size_t i = 0; i < samples.size(); i += 2)
        ASSERT_EQ(samples[i], expected[i]) << i;
    EXPECT_LT(std::abs(samples.back()), std::abs(expected.back()));
}

TEST(SampleChain, begins_to_limit_evenly_over_20_ms) {
    SampleChain chain(stereo, {});
    Samples samples(2 * 1000, 32000);
    const auto bytes = bytesOf(samples);
    SoundSettings settings;
    settings.bandGains[9] = 0.5F; // which a level that lasts does not notice
    chain.process(bytes.first(4 * 100));
    chain.setTarget(settings);
    chain.process(bytes.subspan(4 * 100));
    const double limited = softLimit(32000 / 32768.0F) * 32768;
    for (std::size_t frame = 100; frame < 1000; ++frame) {
        const double part = std::min(1.0, static_cast<double>(frame - 100) / 882);
        ASSERT_NEAR(samples[2 * frame], 32000 + (limited - 32000) * part, 3) << frame;
    }
}

} // namespace
} // namespace corvina::test
