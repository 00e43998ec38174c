#include "graph/ChannelCurves.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace corvina {
namespace {

// Frames of two channels with the same two samples.
SampleBlock constant(std::int16_t left, std::int16_t right, std::size_t frames) {
    SampleBlock block;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        block.samples.push_back(left);
        block.samples.push_back(right);
    }
    return block;
}

TEST(ChannelCurves, each_channel_has_a_line_in_its_own_half) {
    const auto curves = channelCurves(constant(0, 0, 2000), {100, 101});
    ASSERT_EQ(curves.size(), 2u);
    for (const POINT corner : curves[0])
        EXPECT_TRUE(corner.y == 24 || corner.y == 25) << corner.y;
    for (const POINT corner : curves[1])
        EXPECT_EQ(corner.y, 75);
}

TEST(ChannelCurves, positive_samples_are_above_the_middle_and_full_scale_stays_inside) {
    constexpr auto highest = std::numeric_limits<std::int16_t>::max();
    constexpr auto lowest = std::numeric_limits<std::int16_t>::min();
    const auto curves = channelCurves(constant(highest, lowest, 2000), {100, 100});
    ASSERT_EQ(curves.size(), 2u);
    for (const POINT corner : curves[0])
        EXPECT_EQ(corner.y, 0);
    for (const POINT corner : curves[1])
        EXPECT_EQ(corner.y, 99);
}

TEST(ChannelCurves, a_column_reaches_from_its_lowest_to_its_highest_sample) {
    SampleBlock block{.channels = 1};
    for (int frame = 0; frame < 1000; ++frame)
        block.samples.push_back(frame % 2 == 0 ? 32767 : -32768);
    const auto curves = channelCurves(block, {100, 101});
    ASSERT_EQ(curves.size(), 1u);
    ASSERT_EQ(curves[0].size(), 200u);
    for (std::size_t column = 0; column < 100; ++column) {
        EXPECT_EQ(curves[0][2 * column].x, static_cast<LONG>(column));
        EXPECT_EQ(curves[0][2 * column].y, 0);
        EXPECT_EQ(curves[0][2 * column + 1].y, 100);
    }
}

TEST(ChannelCurves, each_column_shows_its_own_samples_alone) {
    SampleBlock block{.channels = 1};
    block.samples.assign(1000, 0);
    block.samples[309] = 32767; // the last of column 30
    block.samples[310] = -32768;
    const auto curves = channelCurves(block, {100, 101});
    ASSERT_EQ(curves.size(), 1u);
    ASSERT_EQ(curves[0].size(), 200u);
    for (std::size_t column = 0; column < 100; ++column) {
        EXPECT_EQ(curves[0][2 * column].y, column == 30 ? 0 : 50) << column;
        EXPECT_EQ(curves[0][2 * column + 1].y, column == 31 ? 100 : 50) << column;
    }
}

TEST(ChannelCurves, a_single_channel_and_a_single_column_have_a_line) {
    EXPECT_EQ(channelCurves({{1, 2}, 1, 44100}, {100, 100}).size(), 1u);
    const auto curves = channelCurves(constant(0, 0, 10), {1, 100});
    ASSERT_EQ(curves.size(), 2u);
    ASSERT_EQ(curves[0].size(), 2u);
    EXPECT_EQ(curves[0][0].x, 0);
}

TEST(ChannelCurves, few_frames_are_spread_over_the_width) {
    const auto curves = channelCurves(constant(0, 0, 3), {101, 40});
    ASSERT_EQ(curves.size(), 2u);
    ASSERT_EQ(curves[0].size(), 3u);
    EXPECT_EQ(curves[0][0].x, 0);
    EXPECT_EQ(curves[0][1].x, 50);
    EXPECT_EQ(curves[0][2].x, 100);
}

TEST(ChannelCurves, without_samples_area_or_height_there_is_no_line) {
    EXPECT_TRUE(channelCurves({}, {100, 100}).empty());
    EXPECT_TRUE(channelCurves(constant(1, 1, 10), {0, 100}).empty());
    EXPECT_TRUE(channelCurves(constant(1, 1, 10), {100, -1}).empty());
    EXPECT_TRUE(channelCurves({{1, 2}, 0, 44100}, {100, 100}).empty());
    EXPECT_TRUE(channelCurves({{1, 2}, -2, 44100}, {100, 100}).empty());
    EXPECT_TRUE(channelCurves({{1, 2}, 3, 44100}, {100, 100}).empty());
    EXPECT_EQ(channelCurves(constant(1, 1, 10), {100, 2}).size(), 1u);
    EXPECT_EQ(channelCurves(constant(1, 1, 1), {100, 100})[0].size(), 1u);
}

} // namespace
} // namespace corvina
