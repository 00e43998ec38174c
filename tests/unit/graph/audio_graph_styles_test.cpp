// The graph with marks, decibels, octaves and a waveform for each channel.

#include "GraphFixture.h"
#include "graph/BandLevels.h"

#include <cmath>

namespace corvina::test {
namespace {

class GraphStyles : public Graph {
protected:
    GraphStyles() {
        settings_.freqColor = green;
        settings_.amplitudeColor = red;
        settings_.backgroundColor = white;
    }

    // Half a tone on the left, silence on the right.
    static SampleBlock leftOnly() {
        SampleBlock block;
        for (int frame = 0; frame < 2000; ++frame) {
            block.samples.push_back(
                static_cast<std::int16_t>(std::lround(30000 * std::sin(0.3 * frame))));
            block.samples.push_back(0);
        }
        return block;
    }
};

TEST_F(GraphStyles, a_mark_stays_where_the_bar_was) {
    settings_.peakHold = true;
    take(sineBlock(53, 32767)); // band 10: columns 40 to 42
    display();
    const int full = barHeight(41, green);
    ASSERT_GT(full, 100);
    take({});
    for (int picture = 0; picture < 10; ++picture)
        display();
    EXPECT_LT(barHeight(41, green), full / 2);
    EXPECT_EQ(pixel(41, size_.cy - full), green);
    EXPECT_EQ(pixel(41, size_.cy - full + 1), green);
    EXPECT_EQ(pixel(41, size_.cy - full + 2), white);
}

TEST_F(GraphStyles, marks_that_were_hidden_begin_anew) {
    settings_.peakHold = true;
    take(sineBlock(53, 32767));
    display();
    take({});
    settings_.peakHold = false;
    for (int picture = 0; picture < 20; ++picture)
        display();
    settings_.peakHold = true;
    display();
    EXPECT_EQ(count(settings_.backgroundColor), 400 * 200);
}

TEST_F(GraphStyles, without_marks_only_the_bars_are_drawn) {
    take(sineBlock(53, 32767));
    display();
    const int full = barHeight(41, green);
    take({});
    for (int picture = 0; picture < 10; ++picture)
        display();
    EXPECT_EQ(pixel(41, size_.cy - full), white);
}

TEST_F(GraphStyles, decibels_show_what_is_too_quiet_for_the_linear_scale) {
    take(sineBlock(53, 300));
    display();
    const int linear = barHeight(41, green);
    settings_.levelScale = LevelScale::decibels;
    display();
    EXPECT_LT(linear, 40);
    EXPECT_GT(barHeight(41, green), 40);
}

TEST_F(GraphStyles, the_level_is_the_same_in_every_scale) {
    take(sineBlock(18, 32767));
    display();
    const std::int32_t level = graph_.level();
    EXPECT_GT(level, 0);
    settings_.levelScale = LevelScale::decibels;
    settings_.frequencyAxis = FrequencyAxis::octaves;
    display();
    EXPECT_EQ(graph_.level(), level);
}

TEST_F(GraphStyles, octaves_use_all_samples_of_a_players_block) {
    settings_.frequencyAxis = FrequencyAxis::octaves;
    settings_.bands = 10;
    settings_.bandsWidth = 20;
    settings_.bandsSpace = 0;
    SampleBlock block;
    block.samples.assign(1000, 0); // a host's block would end in this silence
    for (int frame = 0; frame < 1500; ++frame) {
        const auto value = static_cast<std::int16_t>(std::lround(30000 * std::sin(0.15 * frame)));
        block.samples.push_back(value);
        block.samples.push_back(value);
    }
    graph_.takeBlock(block); // 0.15 of 44100 / 2 pi: 1053 Hz, bar 5
    display();
    EXPECT_GT(barHeight(5 * 20 + 10, green), 150);
    EXPECT_LT(barHeight(9 * 20 + 10, green), 20);
}

TEST_F(GraphStyles, each_channel_has_its_own_waveform) {
    settings_.style = GraphStyle::amplitude;
    settings_.channelWaveforms = true;
    graph_.takeBlock(leftOnly());
    display();
    int upper = 0;
    int lower = 0;
    for (int y = 0; y < size_.cy; ++y)
        for (int x = 0; x < size_.cx; ++x)
            (y < size_.cy / 2 ? upper : lower) += pixel(x, y) == red;
    EXPECT_GT(upper, 10000);
    EXPECT_GE(lower, size_.cx - 1);
    EXPECT_LT(lower, 2 * size_.cx);
}

TEST_F(GraphStyles, a_hosts_samples_are_taken_as_stereo) {
    settings_.style = GraphStyle::amplitude;
    settings_.channelWaveforms = true;
    std::vector<std::int16_t> samples;
    for (int frame = 0; frame < 256; ++frame) {
        samples.push_back(0);
        samples.push_back(frame % 2 == 0 ? std::int16_t{30000} : std::int16_t{-30000});
    }
    take(samples);
    display();
    EXPECT_EQ(pixel(200, 50), red);
    EXPECT_EQ(pixel(200, 20), white);
    int lower = 0;
    for (int y = size_.cy / 2; y < size_.cy; ++y)
        lower += pixel(200, y) == red;
    EXPECT_GT(lower, 20);
}

TEST_F(GraphStyles, every_picture_is_drawn_again_at_another_size) {
    settings_.peakHold = true;
    settings_.levelScale = LevelScale::decibels;
    for (const GraphStyle style : {GraphStyle::frequency, GraphStyle::amplitude}) {
        settings_.style = style;
        settings_.channelWaveforms = true;
        resize({400, 200});
        graph_.takeBlock(leftOnly());
        display();
        const COLORREF color = style == GraphStyle::frequency ? green : red;
        EXPECT_GT(count(color), 0);
        resize({100, 60});
        paint();
        EXPECT_GT(count(color), 0);
    }
}

TEST_F(GraphStyles, a_players_block_shows_the_published_bars_that_the_host_would_see) {
    const SampleBlock block = leftOnly();
    graph_.takeBlock(block);
    display();
    BandLevels expected;
    SampleBuffer buffer;
    buffer.take(block.samples.data());
    expected.update(buffer, 50);
    EXPECT_EQ(graph_.level(), expected.loudness());
    graph_.takeBlock({{1, 2, 3}, 1, 8000}); // shorter than a host's block
    display();
}

} // namespace
} // namespace corvina::test
