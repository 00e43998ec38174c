// What the graph shows: bars, waveform, colours, border, and the level it reports.

#include "GraphFixture.h"

#include <algorithm>

namespace corvina::test {
namespace {

TEST_F(Graph, shows_its_background_before_anything_is_displayed) {
    paint();
    EXPECT_EQ(count(black), 400 * 200);
}

TEST_F(Graph, silence_shows_no_bar) {
    display();
    EXPECT_EQ(count(black), 400 * 200);
}

TEST_F(Graph, a_band_at_full_level_is_a_bar_from_the_bottom_to_the_top) {
    take(sineBlock(53, 32767)); // band 10
    display();
    for (int x = 40; x < 43; ++x)
        EXPECT_EQ(barHeight(x, green), 200) << x;
}

TEST_F(Graph, bars_are_as_wide_and_as_far_apart_as_the_settings_say) {
    take(sineBlock(53, 32767));
    settings_.bandsWidth = 5;
    settings_.bandsSpace = 2;
    display();
    EXPECT_NE(pixel(69, 199), green);
    for (int x = 70; x < 75; ++x)
        EXPECT_EQ(barHeight(x, green), 200) << x;
    EXPECT_NE(pixel(75, 199), green);
    EXPECT_NE(pixel(76, 199), green);
}

TEST_F(Graph, every_bar_is_as_high_as_its_level) {
    take(sineBlock(53, 900));
    display();
    BandLevels expected;
    expected.update(bufferOf(sineBlock(53, 900)), 50);
    int lit = 0;
    for (std::size_t band = 0; band < 50; ++band) {
        const double level = expected.levels()[band];
        const int height = barHeight(static_cast<int>(4 * band), green);
        EXPECT_NEAR(height, level * 200, 0.5 + 1e-9) << band;
        lit += height > 0 && height < 200;
    }
    EXPECT_GT(lit, 1);
}

TEST_F(Graph, a_bar_falls_by_seven_hundredths_of_the_height_at_each_display) {
    take(sineBlock(53, 32767));
    display();
    take({});
    for (int picture = 1; picture <= 15; ++picture) {
        display();
        EXPECT_NEAR(barHeight(40, green), std::max(200 - 14 * picture, 0), 1) << picture;
    }
    EXPECT_EQ(barHeight(40, green), 0);
}

TEST_F(Graph, bars_fall_only_when_they_are_displayed) {
    take(sineBlock(53, 32767));
    display();
    take({});
    paint();
    paint();
    EXPECT_EQ(barHeight(40, green), 200);
}

TEST_F(Graph, colours_and_style_change_at_the_next_display) {
    take(sineBlock(53, 32767));
    display();
    settings_.backgroundColor = blue;
    settings_.freqColor = red;
    paint();
    EXPECT_EQ(pixel(40, 100), green);
    EXPECT_EQ(pixel(399, 0), black);
    display();
    EXPECT_EQ(pixel(40, 100), red);
    EXPECT_EQ(pixel(399, 0), blue);
}

TEST_F(Graph, the_waveform_has_its_own_colour_on_the_background) {
    settings_ = {.style = GraphStyle::amplitude, .backgroundColor = blue, .amplitudeColor = red};
    display();
    EXPECT_EQ(count(red), 400);
    EXPECT_EQ(count(blue), 400 * 199);
    for (int x = 0; x < 400; ++x)
        EXPECT_EQ(pixel(x, 100), red) << x;
}

TEST_F(Graph, the_waveform_passes_through_its_corners) {
    settings_.style = GraphStyle::amplitude;
    std::vector<std::int16_t> samples(511, -16384);
    std::fill(samples.begin() + 100, samples.end(), std::int16_t{16384});
    take(samples);
    display();
    EXPECT_EQ(pixel(20, 51), green);
    EXPECT_EQ(pixel(98, 51), green);
    EXPECT_EQ(pixel(100, 149), green);
    EXPECT_EQ(pixel(399, 149), green);
    EXPECT_EQ(pixel(20, 149), black);
    EXPECT_EQ(pixel(200, 51), black);
}

TEST_F(Graph, the_right_half_of_the_waveform_falls_beyond_the_edge) {
    settings_.style = GraphStyle::amplitude;
    std::vector<std::int16_t> samples(511, 0);
    samples[398] = samples[399] = 32767;                                   // column 199, at x = 398
    std::fill(samples.begin() + 410, samples.end(), std::int16_t{-32767}); // from x = 410 on
    take(samples);
    display();
    EXPECT_EQ(pixel(398, 198), green);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 400; ++x)
            ASSERT_EQ(pixel(x, y), black) << x << ", " << y;
}

TEST_F(Graph, the_level_follows_the_spectrum_in_both_styles) {
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency}) {
        AudioGraph graph;
        auto samples = sineBlock(20, 32767);
        samples.resize(512);
        graph.takeSamples(samples.data());
        EXPECT_EQ(graph.level(), 0);
        graph.display({.style = style}, size_, [] {});
        BandLevels bands;
        bands.update(bufferOf(sineBlock(20, 32767)), 50);
        EXPECT_EQ(graph.level(), bands.loudness());
        EXPECT_GT(graph.level(), 0);
    }
}

TEST_F(Graph, bands_go_on_falling_while_the_waveform_is_shown) {
    take(sineBlock(53, 32767));
    display();
    take({});
    settings_.style = GraphStyle::amplitude;
    for (int picture = 0; picture < 4; ++picture)
        display();
    settings_.style = GraphStyle::frequency;
    display();
    EXPECT_NEAR(barHeight(40, green), 200 - 5 * 14, 1);
}

TEST_F(Graph, clearing_leaves_only_the_background) {
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency}) {
        settings_.style = style;
        take(sineBlock(53, 32767));
        display();
        graph_.clear(settings_);
        paint();
        EXPECT_EQ(count(black), 400 * 200);
    }
}

TEST_F(Graph, clearing_keeps_samples_and_levels) {
    take(sineBlock(53, 32767));
    display();
    graph_.clear(settings_);
    display();
    EXPECT_EQ(barHeight(40, green), 200);
}

TEST_F(Graph, no_bands_show_no_bar) {
    settings_.bands = 0;
    take(sineBlock(3, 32767));
    display();
    EXPECT_EQ(count(settings_.backgroundColor), 400 * 200);
}

TEST_F(Graph, that_is_no_higher_than_its_border_shows_nothing_else) {
    settings_.border = true;
    for (const SIZE size : {SIZE{20, 2}, SIZE{20, 1}, SIZE{2, 20}, SIZE{1, 20}}) {
        resize(size);
        display();
        EXPECT_EQ(count(::GetSysColor(COLOR_3DSHADOW)), size.cx * size.cy);
    }
}

TEST_F(Graph, a_border_is_a_line_around_the_picture) {
    settings_.border = true;
    take(sineBlock(53, 32767));
    display();
    const COLORREF line = ::GetSysColor(COLOR_3DSHADOW);
    for (int x = 0; x < 400; ++x) {
        EXPECT_EQ(pixel(x, 0), line);
        EXPECT_EQ(pixel(x, 199), line);
    }
    for (int y = 0; y < 200; ++y) {
        EXPECT_EQ(pixel(0, y), line);
        EXPECT_EQ(pixel(399, y), line);
    }
    EXPECT_EQ(count(line), 2 * 400 + 2 * 198);
    EXPECT_EQ(pixel(41, 1), green);
    EXPECT_EQ(pixel(41, 198), green);
    EXPECT_NE(pixel(40, 100), green);
}

} // namespace
} // namespace corvina::test
