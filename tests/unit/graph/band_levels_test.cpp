#include "graph/BandLevels.h"
#include "support/Limits.h"
#include "support/SampleBlocks.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <vector>

namespace corvina {
namespace {

using test::bufferOf;
using test::highest;
using test::lowest;
using test::silence;
using test::sine;

std::vector<double> levelsOf(const BandLevels& bands, std::size_t count = BandLevels::capacity) {
    const auto levels = bands.levels().first(count);
    return {levels.begin(), levels.end()};
}

BandLevels after(const SampleBuffer& samples, std::int32_t bands) {
    BandLevels levels;
    levels.update(samples, bands);
    return levels;
}

// The spectrum by the definition of the Fourier transform.
std::vector<float> spectrumOf(const SampleBuffer& samples) {
    const double pi = 4.0 * std::atan(1.0);
    constexpr std::size_t size = 1024;
    std::vector<double> values(size);
    std::vector<std::complex<double>> turns(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double angle = static_cast<double>(i) * 2.0 * pi / 1023;
        values[i] = samples[i] * (0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2 * angle));
        turns[i] = std::polar(1.0, 2.0 * pi * static_cast<double>(i) / size);
    }
    std::vector<float> spectrum(size);
    for (std::size_t bin = 0; bin <= size / 2; ++bin) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < size; ++i)
            sum += values[i] * turns[bin * i % size];
        const double part = std::abs(sum) / 256 / 32767;
        spectrum[bin] = static_cast<float>(std::min(part, 0.1) / 0.1);
    }
    return spectrum;
}

// Levels after the first picture, band by band, in double precision.
std::vector<double> expectedLevels(const std::vector<float>& spectrum, int bands) {
    std::vector<double> levels;
    double sum = 0;
    for (int band = 0; band < bands; ++band) {
        for (int bin = 1 + 5 * band; bin < 5 + 5 * band; ++bin)
            if (bin < 1024)
                sum += spectrum[static_cast<std::size_t>(bin)];
        const double weight = 0.5 * (1 - std::cos(6.2831855 * (band + 3) / (bands + 3)));
        sum = (weight + 1) * sum / 3;
        levels.push_back(std::min(sum, 1.0));
    }
    return levels;
}

TEST(BandLevels, silence_leaves_every_level_at_zero) {
    const auto bands = after(silence(), 50);
    EXPECT_EQ(levelsOf(bands), std::vector<double>(1024, 0.0));
    EXPECT_EQ(bands.loudness(), 0);
}

TEST(BandLevels, silence_makes_every_bar_fall_by_seven_hundredths_until_it_reaches_zero) {
    BandLevels bands = after(sine(18, 32767), 50);
    auto expected = levelsOf(bands);
    EXPECT_EQ(expected[3], 1.0);
    for (int picture = 0; picture < 20; ++picture) {
        bands.update(silence(), 50);
        for (double& level : expected)
            level = level - 0.07 < 0 ? 0 : level - 0.07;
        ASSERT_EQ(levelsOf(bands), expected) << picture;
    }
    EXPECT_EQ(levelsOf(bands), std::vector<double>(1024, 0.0));
}

TEST(BandLevels, a_bar_rises_at_once_and_is_held_above_a_quieter_block) {
    BandLevels bands = after(sine(18, 32767), 50);
    bands.update(sine(18, 300), 50);
    EXPECT_EQ(bands.levels()[3], 1.0 - 0.07);
    bands.update(sine(18, 32767), 50);
    EXPECT_EQ(bands.levels()[3], 1.0);
}

TEST(BandLevels, a_full_scale_sine_fills_the_bands_around_its_frequency) {
    for (const int bin : {7, 52, 103, 228}) {
        const auto bands = after(sine(bin, 32767), 50);
        const auto band = static_cast<std::size_t>((bin - 1) / 5);
        EXPECT_EQ(bands.levels()[band], 1.0) << bin;
        if (band >= 2) {
            EXPECT_LT(bands.levels()[band - 2], 0.01) << bin;
        }
    }
}

TEST(BandLevels, no_level_exceeds_one) {
    for (const int bin : {1, 5, 20, 100, 300, 512})
        for (const double level : levelsOf(after(sine(bin, 32767), 50)))
            EXPECT_LE(level, 1.0);
}

TEST(BandLevels, levels_follow_the_transforms_definition) {
    for (const int bin : {3, 50, 124, 200})
        for (const int count : {1, 9, 50, 102, 204}) {
            const auto samples = sine(bin, 1500);
            const auto expected = expectedLevels(spectrumOf(samples), count);
            const auto levels = levelsOf(after(samples, count));
            for (std::size_t band = 0; band < expected.size(); ++band)
                ASSERT_NEAR(levels[band], expected[band], 1e-5)
                    << "bin " << bin << ", band " << band << " of " << count;
        }
}

TEST(BandLevels, a_step_follows_the_transforms_definition) {
    std::vector<std::int16_t> step(511, 12000);
    std::fill(step.begin(), step.begin() + 200, std::int16_t{-12000});
    const auto samples = bufferOf(step);
    const auto expected = expectedLevels(spectrumOf(samples), 50);
    const auto levels = levelsOf(after(samples, 50), 50);
    for (std::size_t band = 0; band < 50; ++band)
        EXPECT_NEAR(levels[band], expected[band], 1e-5);
}

TEST(BandLevels, each_band_carries_a_part_of_the_one_before) {
    // The tone's bins all lie in band 10; what stands in band 11 and above is carried over.
    const auto levels = levelsOf(after(sine(53, 900), 50), 50);
    for (int band = 12; band < 20; ++band) {
        const double weight = 0.5 * (1 - std::cos(6.2831855 * (band + 3) / 53));
        EXPECT_NEAR(levels[static_cast<std::size_t>(band)],
                    levels[static_cast<std::size_t>(band - 1)] * (weight + 1) / 3, 1e-3);
    }
}

TEST(BandLevels, the_middle_band_weighs_most_and_the_last_least) {
    // White noise from an impulse: every bin holds the same.
    std::vector<std::int16_t> impulse(511, 0);
    impulse[500] = 9000;
    const auto levels = levelsOf(after(bufferOf(impulse), 50), 50);
    EXPECT_LT(levels[0], levels[24]);
    EXPECT_LT(levels[49], levels[24]);
    EXPECT_GT(levels[24], 0.0);
    EXPECT_LT(levels[24], 1.0);
}

TEST(BandLevels, bands_beyond_the_spectrums_lower_half_find_nothing_there) {
    const auto samples = sine(508, 32767);
    const auto levels = levelsOf(after(samples, 1024));
    EXPECT_EQ(levels[101], 1.0);
    const auto expected = expectedLevels(spectrumOf(samples), 1024);
    for (std::size_t band = 0; band < 1024; ++band)
        ASSERT_NEAR(levels[band], expected[band], 1e-5) << band;
    EXPECT_LT(levels[300], 1e-10);
}

TEST(BandLevels, bands_beyond_1024_have_no_level_but_still_set_the_weights) {
    const auto samples = sine(18, 900);
    const auto some = levelsOf(after(samples, 1024));
    EXPECT_EQ(levelsOf(after(samples, 1025)).size(), 1024U);
    const auto more = levelsOf(after(samples, 1000000));
    EXPECT_NE(some[3], more[3]);
}

TEST(BandLevels, the_highest_numbers_of_bands_leave_the_weight_at_zero) {
    const auto levels = levelsOf(after(sine(18, 900), highest));
    double sum = 0;
    const auto spectrum = spectrumOf(sine(18, 900));
    for (std::size_t band = 0; band < 10; ++band) {
        for (std::size_t bin = 1 + 5 * band; bin < 5 + 5 * band; ++bin)
            sum += spectrum[bin];
        sum /= 3;
        EXPECT_NEAR(levels[band], sum, 1e-5) << band;
    }
    EXPECT_EQ(levelsOf(after(sine(18, 900), highest - 2)), levels);
}

TEST(BandLevels, no_bands_leave_every_level_as_it_was) {
    for (const std::int32_t none : {0, -1, -3, lowest}) {
        BandLevels bands = after(sine(18, 32767), 50);
        const auto before = levelsOf(bands);
        bands.update(sine(100, 32767), none);
        EXPECT_EQ(levelsOf(bands), before) << none;
    }
}

TEST(BandLevels, levels_beyond_the_number_of_bands_stay) {
    BandLevels bands = after(sine(100, 32767), 50);
    const double before = bands.levels()[20];
    bands.update(silence(), 10);
    EXPECT_EQ(bands.levels()[20], before);
    EXPECT_GT(before, 0.0);
}

TEST(BandLevels, loudness_averages_the_nine_lowest_bands_rounding_at_every_step) {
    const auto bands = after(sine(9, 2000), 50);
    double total = 0;
    for (std::size_t band = 0; band < 9; ++band)
        total = std::nearbyint(bands.levels()[band] * 100 + total);
    EXPECT_EQ(bands.loudness(), static_cast<std::int32_t>(std::nearbyint(total / 9)));
    EXPECT_GT(bands.loudness(), 0);
}

TEST(BandLevels, loudness_is_rounded_right_at_every_strength) {
    for (int amplitude = 100; amplitude <= 3000; amplitude += 100) {
        const auto bands = after(sine(9, amplitude), 50);
        double total = 0;
        for (std::size_t band = 0; band < 9; ++band)
            total = std::nearbyint(bands.levels()[band] * 100 + total);
        EXPECT_EQ(bands.loudness(), static_cast<std::int32_t>(std::nearbyint(total / 9)))
            << amplitude;
    }
}

TEST(BandLevels, the_lowest_band_has_its_part_of_the_loudness) {
    const auto bands = after(sine(3, 32767), 50);
    double total = 0;
    for (std::size_t band = 0; band < 9; ++band)
        total = std::nearbyint(bands.levels()[band] * 100 + total);
    EXPECT_GT(bands.levels()[0], 0.3);
    EXPECT_EQ(bands.loudness(), static_cast<std::int32_t>(std::nearbyint(total / 9)));
}

TEST(BandLevels, a_tone_in_the_tenth_band_has_no_loudness) {
    const auto bands = after(sine(48, 32767), 50);
    EXPECT_GT(bands.levels()[9], 0.5);
    EXPECT_EQ(bands.loudness(), 0);
}

TEST(BandLevels, loudness_stays_within_a_hundred) {
    std::vector<std::int16_t> loud(511);
    for (std::size_t i = 0; i < loud.size(); ++i)
        loud[i] = i % 37 < 18 ? std::int16_t{32767} : std::int16_t{-32768};
    const auto bands = after(bufferOf(loud), 9);
    EXPECT_GT(bands.loudness(), 50);
    EXPECT_LE(bands.loudness(), 100);
}

TEST(BandLevels, a_tone_above_the_lowest_bands_has_no_loudness) {
    EXPECT_EQ(after(sine(300, 32767), 50).loudness(), 0);
}

TEST(SampleBuffer, a_block_brings_1023_bytes_and_leaves_the_rest_as_it_was) {
    std::vector<std::int16_t> block(1024, 0x1234);
    SampleBuffer buffer;
    buffer.take(block.data());
    EXPECT_EQ(buffer[0], 0x1234);
    EXPECT_EQ(buffer[510], 0x1234);
    EXPECT_EQ(buffer[511], 0x0034); // its high byte is not part of the block
    EXPECT_EQ(buffer[512], 0);
    std::fill(block.begin(), block.end(), std::int16_t{-1});
    buffer.take(block.data());
    EXPECT_EQ(buffer[511], 0x00FF);
    EXPECT_EQ(buffer[1023], 0);
}

} // namespace
} // namespace corvina
