#include "graph/BandLevels.h"
#include "graph/SpectrumBars.h"
#include "support/Limits.h"
#include "support/SampleBlocks.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace corvina {
namespace {

using test::silence;
using test::sine;

constexpr GraphSettings decibels{.levelScale = LevelScale::decibels};
constexpr GraphSettings octaves{.bands = 10, .frequencyAxis = FrequencyAxis::octaves};
constexpr GraphSettings octavesInDecibels{
    .bands = 10, .levelScale = LevelScale::decibels, .frequencyAxis = FrequencyAxis::octaves};

// A stereo block as a player sends it: 2000 frames.
SampleBlock tone(double hertz, double left, double right, std::int32_t rate = 44100) {
    SampleBlock block{.channels = 2, .sampleRate = rate};
    for (int frame = 0; frame < 2000; ++frame) {
        const double value = std::sin(2.0 * std::numbers::pi * hertz * frame / rate);
        block.samples.push_back(static_cast<std::int16_t>(std::lround(left * value)));
        block.samples.push_back(static_cast<std::int16_t>(std::lround(right * value)));
    }
    return block;
}

std::size_t highestBar(const SpectrumBars& bars) {
    const auto levels = bars.levels();
    return static_cast<std::size_t>(std::ranges::max_element(levels) - levels.begin());
}

double highestLevel(const SpectrumBars& bars) {
    return *std::ranges::max_element(bars.levels());
}

TEST(SpectrumBars, decibels_put_full_scale_at_the_top) {
    SpectrumBars bars;
    bars.update(sine(53, 32767), {}, decibels); // bin 53 belongs to band 10
    EXPECT_EQ(highestBar(bars), 10u);
    EXPECT_NEAR(bars.levels()[10], 1.0, 0.001);
}

TEST(SpectrumBars, every_six_decibels_less_are_a_tenth_less) {
    for (const int halvings : {1, 2, 5, 9}) {
        SpectrumBars bars;
        const double amplitude = 32767.0 / std::pow(2.0, halvings);
        bars.update(sine(53, static_cast<int>(std::lround(amplitude))), {}, decibels);
        EXPECT_NEAR(bars.levels()[10], 1.0 - halvings * 6.0206 / 60.0, 0.005) << halvings;
    }
}

TEST(SpectrumBars, a_tone_below_60_decibels_and_silence_have_no_bar) {
    SpectrumBars bars;
    bars.update(sine(53, 20), {}, decibels);
    EXPECT_EQ(highestLevel(bars), 0.0);
    bars.update(silence(), {}, decibels);
    EXPECT_EQ(highestLevel(bars), 0.0);
}

TEST(SpectrumBars, fall_by_7_percent_a_picture) {
    SpectrumBars bars;
    bars.update(sine(53, 32767), {}, decibels);
    const double before = bars.levels()[10];
    bars.update(silence(), {}, decibels);
    EXPECT_NEAR(bars.levels()[10], before - 0.07, 1e-12);
    for (int picture = 0; picture < 20; ++picture)
        bars.update(silence(), {}, decibels);
    EXPECT_EQ(bars.levels()[10], 0.0);
}

TEST(SpectrumBars, ten_octave_bars_hold_one_octave_each) {
    // 20 Hz to 20 kHz are 9.97 octaves; a tone in the middle of each.
    for (int bar = 1; bar < 10; ++bar) {
        SpectrumBars bars;
        bars.update(silence(), tone(20.0 * std::pow(1000.0, (bar + 0.5) / 10.0), 20000, 20000),
                    octavesInDecibels);
        EXPECT_EQ(highestBar(bars), static_cast<std::size_t>(bar));
    }
}

TEST(SpectrumBars, octaves_follow_the_sample_rate_and_end_at_half_of_it) {
    SpectrumBars bars;
    bars.update(silence(), tone(1000, 20000, 20000, 8000), octavesInDecibels);
    // 20 Hz to 4 kHz: 1 kHz is at 7.4 tenths of the way.
    EXPECT_EQ(highestBar(bars), 7u);
}

TEST(SpectrumBars, octaves_mix_the_channels) {
    SpectrumBars both, left, opposite;
    both.update(silence(), tone(1000, 8000, 8000), octavesInDecibels);
    left.update(silence(), tone(1000, 8000, 0), octavesInDecibels);
    opposite.update(silence(), tone(1000, 8000, -8000), octavesInDecibels);
    EXPECT_NEAR(highestLevel(both) - highestLevel(left), 0.1, 0.002);
    EXPECT_EQ(highestLevel(opposite), 0.0);
}

TEST(SpectrumBars, linear_octaves_are_full_at_a_tenth_of_full_scale) {
    SpectrumBars full, half;
    full.update(silence(), tone(1000, 32767, 32767), octaves);
    half.update(silence(), tone(1000, 1638, 1638), octaves);
    EXPECT_EQ(highestLevel(full), 1.0);
    EXPECT_NEAR(highestLevel(half), 0.5, 0.03);
}

// The transform as it is defined, slowly.
std::vector<double> amplitudesOf(const std::vector<double>& values, int size) {
    std::vector<double> windowed;
    double weights = 0;
    const double last = static_cast<double>(values.size()) - 1;
    for (std::size_t index = 0; index < values.size(); ++index) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(index) / last;
        const double weight = 0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2 * angle);
        weights += weight;
        windowed.push_back(values[index] * weight);
    }
    std::vector<double> amplitudes;
    for (int bin = 0; bin < size / 2; ++bin) {
        std::complex<double> sum;
        std::complex<double> turned = 1;
        const auto turn = std::polar(1.0, -2 * std::numbers::pi * bin / size);
        for (const double value : windowed) {
            sum += value * turned;
            turned *= turn;
        }
        amplitudes.push_back(2 * std::abs(sum) / weights);
    }
    return amplitudes;
}

TEST(SpectrumBars, octaves_follow_the_transforms_definition) {
    std::mt19937 random(1);
    SampleBlock block{.channels = 1, .sampleRate = 32000};
    std::vector<double> values;
    for (int frame = 0; frame < 2000; ++frame) {
        block.samples.push_back(static_cast<std::int16_t>(random() % 20000) - 10000);
        values.push_back(block.samples.back() / 32768.0);
    }
    constexpr int size = 4096;
    constexpr int count = 25;
    const std::vector<double> amplitudes = amplitudesOf(values, size);
    GraphSettings settings = octaves;
    settings.bands = count;
    SpectrumBars bars;
    bars.update({}, block, settings);
    const auto binAt = [](int bar) {
        return 20.0 * std::pow(16000.0 / 20.0, static_cast<double>(bar) / count) / 32000 * size;
    };
    for (int bar = 0; bar < count; ++bar) {
        // Between two bins, and the highest of those within.
        const double middle = (binAt(bar) + binAt(bar + 1)) / 2;
        const auto below = static_cast<std::size_t>(middle);
        const double part = middle - static_cast<double>(below);
        double highest = amplitudes[below] * (1 - part) + amplitudes[below + 1] * part;
        for (int bin = 0; bin < size / 2; ++bin)
            if (bin >= binAt(bar) && bin < binAt(bar + 1))
                highest = std::max(highest, amplitudes[static_cast<std::size_t>(bin)]);
        EXPECT_NEAR(bars.levels()[static_cast<std::size_t>(bar)], std::min(highest / 0.1, 1.0),
                    1e-6)
            << bar;
    }
}

TEST(SpectrumBars, octaves_beyond_half_of_a_low_sample_rate_are_empty) {
    for (const std::int32_t rate : {1, 10, 39}) {
        SpectrumBars bars;
        bars.update(silence(), tone(rate / 4.0, 20000, 20000, rate), octaves);
        EXPECT_EQ(bars.levels()[0], 0.0) << rate;
    }
}

TEST(SpectrumBars, any_number_of_bars_and_any_block_is_safe) {
    for (const std::int32_t count : {test::lowest, -1, 0, 1, 3, 50, 1024, 1025, test::highest}) {
        for (GraphSettings settings : {decibels, octaves}) {
            settings.bands = count;
            SpectrumBars bars;
            for (const SampleBlock& block :
                 {SampleBlock{}, SampleBlock{{1}, 2, 44100}, SampleBlock{{1, 2, 3}, 0, 0},
                  SampleBlock{{1, 2, 3}, -5, -44100}, SampleBlock{{1, 2, 3}, 1, 1},
                  tone(100, 1, 1)})
                bars.update(silence(), block, settings);
            EXPECT_EQ(bars.levels().size(),
                      static_cast<std::size_t>(std::clamp(count, 0, BandLevels::capacity)));
            for (const double level : bars.levels())
                EXPECT_TRUE(level >= 0.0 && level <= 1.0);
        }
    }
}

} // namespace
} // namespace corvina
