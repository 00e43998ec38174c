#include "graph/AmplitudeCurve.h"
#include "support/SampleBlocks.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using test::bufferOf;
using test::silence;

constexpr SIZE usual{400, 200};

SampleBuffer constant(std::int16_t value) {
    return bufferOf(std::vector<std::int16_t>(511, value));
}

TEST(AmplitudeCurve, starts_at_the_left_edge_in_the_middle) {
    const auto curve = amplitudeCurve(constant(32767), usual);
    EXPECT_EQ(curve.front().x, 0);
    EXPECT_EQ(curve.front().y, 100);
}

TEST(AmplitudeCurve, has_one_corner_a_column_at_twice_the_columns_number) {
    const auto curve = amplitudeCurve(silence(), usual);
    ASSERT_EQ(curve.size(), 1U + 401U + 2U);
    for (int column = 0; column <= 400; ++column)
        EXPECT_EQ(curve[static_cast<std::size_t>(column) + 1].x, 2 * column);
}

TEST(AmplitudeCurve, ends_in_the_middle_beyond_the_right_edge) {
    const auto curve = amplitudeCurve(constant(32767), usual);
    EXPECT_EQ(curve[402].x, 401);
    EXPECT_EQ(curve[402].y, 100);
    EXPECT_EQ(curve[403].x, 402);
    EXPECT_EQ(curve[403].y, 100);
}

TEST(AmplitudeCurve, silence_is_a_line_in_the_middle) {
    for (const auto& corner : amplitudeCurve(silence(), {400, 201}))
        EXPECT_EQ(corner.y, 100);
}

TEST(AmplitudeCurve, positive_samples_are_below_the_middle_and_full_scale_leaves_two_pixels) {
    EXPECT_EQ(amplitudeCurve(constant(32767), usual)[1].y, 198);
    EXPECT_EQ(amplitudeCurve(constant(-32767), usual)[1].y, 2);
}

TEST(AmplitudeCurve, the_lowest_sample_is_clamped_to_full_scale) {
    EXPECT_EQ(amplitudeCurve(constant(-32768), usual)[1].y, 2);
}

TEST(AmplitudeCurve, the_scale_is_fixed_however_quiet_the_samples_are) {
    EXPECT_EQ(amplitudeCurve(constant(334), usual)[1].y, 101); // 98 * 334 / 32767 = 0.999
    EXPECT_EQ(amplitudeCurve(constant(100), usual)[1].y, 100);
}

TEST(AmplitudeCurve, heights_are_rounded_half_to_even) {
    // mid 3, so (3 - 2) * 0.5 + 3 = 3.5 and with mid 4, (4 - 2) * 0.25 + 4 = 4.5.
    const auto fraction = [](double part, LONG height) {
        // Two samples a column whose sum is that part of full scale.
        std::vector<std::int16_t> samples(511,
                                          static_cast<std::int16_t>(std::lround(part * 32767)));
        for (std::size_t i = 1; i < samples.size(); i += 2)
            samples[i] = static_cast<std::int16_t>(std::lround(2 * part * 32767) - samples[0]);
        return amplitudeCurve(bufferOf(samples), {400, height})[1].y;
    };
    EXPECT_EQ(fraction(0.5, 6), 4);
    EXPECT_EQ(fraction(-0.5, 6), 2);
    EXPECT_EQ(fraction(0.5, 2), 0); // (1 - 2) * 0.5 + 1 = 0.5
}

TEST(AmplitudeCurve, each_column_is_the_average_of_a_whole_number_of_samples) {
    std::vector<std::int16_t> samples(511, 0);
    samples[2] = 32767; // step is 1023 / 400 = 2: the second column
    samples[3] = 32767;
    samples[4] = 32767; // half of the third
    const auto curve = amplitudeCurve(bufferOf(samples), usual);
    EXPECT_EQ(curve[1].y, 100);
    EXPECT_EQ(curve[2].y, 198);
    EXPECT_EQ(curve[3].y, 149);
    EXPECT_EQ(curve[4].y, 100);
}

TEST(AmplitudeCurve, a_step_in_the_samples_is_a_step_in_the_curve) {
    std::vector<std::int16_t> samples(511, -16384);
    std::fill(samples.begin() + 100, samples.end(), std::int16_t{16384});
    const auto curve = amplitudeCurve(bufferOf(samples), usual);
    EXPECT_EQ(curve[50].y, 51);
    EXPECT_EQ(curve[51].y, 149);
}

TEST(AmplitudeCurve, the_highest_sample_counts_as_silence) {
    const auto buffer = test::fullBuffer([](std::size_t) { return std::int16_t{32767}; });
    const auto curve = amplitudeCurve(buffer, {1023, 200});
    EXPECT_EQ(curve[1 + 1022].y, 198);
    EXPECT_EQ(curve[1 + 1023].y, 100);
}

TEST(AmplitudeCurve, a_surface_of_no_area_has_no_curve) {
    EXPECT_TRUE(amplitudeCurve(constant(1), {0, 0}).empty());
    EXPECT_TRUE(amplitudeCurve(constant(1), {0, 100}).empty());
    EXPECT_TRUE(amplitudeCurve(constant(1), {100, 0}).empty());
    EXPECT_TRUE(amplitudeCurve(constant(1), {-5, -5}).empty());
}

TEST(AmplitudeCurve, a_surface_with_more_columns_than_samples_shows_one_sample_a_column) {
    std::vector<std::int16_t> samples(511, 0);
    samples[7] = 32767;
    const auto curve = amplitudeCurve(bufferOf(samples), {2000, 200});
    EXPECT_EQ(curve[7].y, 100);
    EXPECT_EQ(curve[8].y, 198);
    EXPECT_EQ(curve[9].y, 100);
    EXPECT_EQ(curve.size(), 2004U);
}

TEST(AmplitudeCurve, a_column_has_as_many_samples_as_the_highest_index_holds_widths) {
    std::vector<std::int16_t> samples(511, 0);
    samples[7] = 32767; // 1023 / 512 is 1, though there are 2 * 512 samples
    const auto curve = amplitudeCurve(bufferOf(samples), {512, 200});
    EXPECT_EQ(curve[1 + 6].y, 100);
    EXPECT_EQ(curve[1 + 7].y, 198);
    EXPECT_EQ(curve[1 + 8].y, 100);
}

TEST(AmplitudeCurve, the_widest_and_highest_surface_is_no_problem) {
    const auto curve = amplitudeCurve(constant(32767), {32767, 32767});
    EXPECT_EQ(curve[1].y, 2 * 16383 - 2);
    EXPECT_EQ(curve.size(), 32767U + 4U);
}

TEST(AmplitudeCurve, tiny_surfaces_turn_the_curve_around_the_middle) {
    EXPECT_EQ(amplitudeCurve(constant(32767), {4, 2})[1].y, 0); // (1 - 2) * 1 + 1
    EXPECT_EQ(amplitudeCurve(constant(32767), {4, 1})[1].y, -2);
}

TEST(AmplitudeCurve, waits_before_every_column) {
    int columns = 0;
    (void)amplitudeCurve(silence(), usual, [&] { ++columns; });
    EXPECT_EQ(columns, 401);
}

TEST(AmplitudeCurve, samples_that_change_between_columns_shape_the_columns_that_follow) {
    SampleBuffer samples;
    int column = 0;
    const auto curve = amplitudeCurve(samples, usual, [&] {
        if (column++ == 10)
            samples = constant(32767);
    });
    EXPECT_EQ(curve[10].y, 100);
    EXPECT_EQ(curve[11].y, 198);
}

} // namespace
} // namespace corvina
