// The equalizer's bands by themselves, and the limit behind them.

#include "player/Equalizer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

namespace corvina::test {
namespace {

// What the coefficients do to a tone, in decibels.
double response(const BiquadCoefficients& c, double frequency, double sampleRate) {
    const std::complex<double> z = std::polar(1.0, -2 * std::numbers::pi * frequency / sampleRate);
    const std::complex<double> gain = (double{c.b0} + double{c.b1} * z + double{c.b2} * z * z) /
                                      (1.0 + double{c.a1} * z + double{c.a2} * z * z);
    return 20 * std::log10(std::abs(gain));
}

Equalizer::Gains only(std::size_t band, float gain) {
    Equalizer::Gains gains{};
    gains[band] = gain;
    return gains;
}

TEST(PeakingFilter, has_its_gain_at_its_frequency_and_half_of_it_half_an_octave_away) {
    for (const double gain : {12.0, -12.0, 5.0}) {
        const BiquadCoefficients filter = peakingFilter(1000, 44100, gain);
        EXPECT_NEAR(response(filter, 1000, 44100), gain, 0.001);
        for (const double frequency : {1000 * std::numbers::sqrt2, 1000 / std::numbers::sqrt2})
            EXPECT_NEAR(response(filter, frequency, 44100), gain / 2, 0.1) << frequency;
        for (const double frequency : {20.0, 20000.0})
            EXPECT_NEAR(response(filter, frequency, 44100), 0, 0.05) << frequency;
    }
}

TEST(Bands, are_an_octave_apart) {
    EXPECT_EQ(bandFrequency(0), 31.25);
    EXPECT_EQ(bandFrequency(5), 1000);
    EXPECT_EQ(bandFrequency(9), 16000);
}

TEST(Bands, begin_in_the_silence_before_the_stream) {
    Equalizer equalizer(44100, only(5, 12));
    std::vector<float> samples{0.5F};
    equalizer.process(0, samples);
    EXPECT_NEAR(samples[0], peakingFilter(1000, 44100, 12).b0 * 0.5F, 1e-6);
}

TEST(Bands, that_begin_within_the_stream_go_on_from_its_last_level) {
    Equalizer equalizer(44100, {});
    equalizer.setGains(only(5, 12));
    std::vector<float> samples(100, 0.5F);
    equalizer.process(0, samples);
    for (const float sample : samples)
        EXPECT_NEAR(sample, 0.5F, 1e-5);
}

TEST(Bands, at_half_the_sample_rate_do_nothing) {
    Equalizer equalizer(32000, only(9, 12));
    EXPECT_TRUE(equalizer.idle());
    std::vector<float> samples{0.5F, -0.5F, 0.25F};
    const std::vector<float> original = samples;
    equalizer.process(0, samples);
    EXPECT_EQ(samples, original);
}

TEST(Bands, below_half_the_sample_rate_work) {
    Equalizer equalizer(22050, only(8, 12));
    EXPECT_FALSE(equalizer.idle());
    std::vector<float> samples{0.5F};
    equalizer.process(0, samples);
    EXPECT_NEAR(samples[0], peakingFilter(8000, 22050, 12).b0 * 0.5F, 1e-6);
}

TEST(Bands, leave_channels_behind_the_eighth_alone) {
    Equalizer equalizer(44100, only(5, 12));
    std::vector<float> seventh{0.5F, 0.1F};
    std::vector<float> ninth = seventh;
    const std::vector<float> original = ninth;
    equalizer.process(7, seventh);
    EXPECT_NE(seventh, original);
    equalizer.process(8, ninth);
    EXPECT_EQ(ninth, original);
}

TEST(SoftLimit, leaves_what_is_not_near_full_scale_alone) {
    for (const float sample : {0.0F, 0.5F, -0.9F, 0.9F})
        EXPECT_EQ(softLimit(sample), sample);
}

TEST(SoftLimit, is_never_exceeded_and_keeps_the_sign) {
    for (const float sample : {1.0F, 1.5F, 4.0F, 1e30F, std::numeric_limits<float>::infinity()}) {
        EXPECT_LE(softLimit(sample), 1.0F) << sample;
        EXPECT_EQ(softLimit(-sample), -softLimit(sample)) << sample;
    }
    EXPECT_GT(softLimit(4.0F), 0.999F) << "but reached by what is loud enough";
}

TEST(SoftLimit, begins_without_an_edge) {
    constexpr float step = 0.001F;
    EXPECT_NEAR(softLimit(0.9F + step) - softLimit(0.9F), step, step / 100);
    for (float sample = 0.9F; sample < 2; sample += 0.01F)
        EXPECT_LE(softLimit(sample), softLimit(sample + 0.01F));
}

} // namespace
} // namespace corvina::test
