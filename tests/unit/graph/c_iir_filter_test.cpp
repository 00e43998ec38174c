#include "graph/cIIRFilter.h"
#include "runtime/Rounding.h"
#include "support/ErrorNumber.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace corvina {
namespace {

using Samples = std::vector<std::int16_t>;
using test::errorNumberOf;

constexpr BiquadCoefficients lowPass{0.0675F, 0.1349F, 0.0675F, -1.143F, 0.4128F};

cIIRFilter filterWith(const BiquadCoefficients& coefficients) {
    cIIRFilter filter;
    filter.SetCoefficients(coefficients);
    return filter;
}

Samples filtered(cIIRFilter filter, Samples samples) {
    filter.ProcessSamples(samples, static_cast<std::int32_t>(samples.size()) - 1);
    return samples;
}

Samples noise(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> value(-32768, 32767);
    Samples samples(count);
    for (auto& sample : samples)
        sample = static_cast<std::int16_t>(value(random));
    return samples;
}

TEST(IIRFilter, a_new_filter_turns_every_sample_into_zero) {
    EXPECT_EQ(cIIRFilter().Coefficients(), BiquadCoefficients());
    EXPECT_EQ(filtered(cIIRFilter(), {1, -32768, 32767}), (Samples{0, 0, 0}));
}

TEST(IIRFilter, coefficients_that_were_set_can_be_read) {
    EXPECT_EQ(filterWith(lowPass).Coefficients(), lowPass);
}

TEST(IIRFilter, a_negative_last_index_leaves_the_samples_untouched) {
    for (const std::int32_t lastIndex : {-1, std::numeric_limits<std::int32_t>::min()}) {
        cIIRFilter filter;
        Samples samples{5, 6};
        filter.ProcessSamples(samples, lastIndex);
        EXPECT_EQ(samples, (Samples{5, 6}));
    }
}

TEST(IIRFilter, last_index_0_processes_exactly_one_sample) {
    cIIRFilter filter;
    Samples samples{5, 6};
    filter.ProcessSamples(samples, 0);
    EXPECT_EQ(samples, (Samples{0, 6}));
}

TEST(IIRFilter, the_identity_gives_every_sample_back) {
    const auto identity = filterWith({.b0 = 1.0F});
    for (int sample = -32768; sample <= 32767; ++sample) {
        const auto value = static_cast<std::int16_t>(sample);
        ASSERT_EQ(filtered(identity, {value}), Samples{value});
    }
}

TEST(IIRFilter, the_lowest_output_is_minus_32768_though_minus_one_is_minus_32767) {
    EXPECT_EQ(filtered(filterWith({.b0 = 1.0F}), {-32768, -32767}), (Samples{-32768, -32767}));
    EXPECT_EQ(filtered(filterWith({.b0 = -1.0F}), {32767, -32768}), (Samples{-32767, 32767}));
}

TEST(IIRFilter, outputs_beyond_the_range_are_clipped) {
    EXPECT_EQ(filtered(filterWith({.b0 = 3.0F}), {20000, -20000}), (Samples{32767, -32768}));
}

TEST(IIRFilter, halves_are_rounded_to_even) {
    EXPECT_EQ(filtered(filterWith({.b0 = 32767.0F}), {0}), Samples{0});
    // 0.5 of an odd sample lies halfway: the even neighbour is taken wherever the quotient is
    // exact.
    const auto half = filterWith({.b0 = 0.5F});
    for (const int sample : {1, 3, 5, 7, -1, -3, -5, -7}) {
        const float y = 0.5F * (static_cast<float>(sample) / 32767.0F);
        EXPECT_EQ(filtered(half, {static_cast<std::int16_t>(sample)}),
                  Samples{roundToInt16(y * 32767.0F)})
            << sample;
    }
}

TEST(IIRFilter, each_coefficient_weighs_its_own_input_or_output) {
    const Samples impulse{1000, 0, 0, 0};
    EXPECT_EQ(filtered(filterWith({.b0 = 1.0F}), impulse), (Samples{1000, 0, 0, 0}));
    EXPECT_EQ(filtered(filterWith({.b1 = 1.0F}), impulse), (Samples{0, 1000, 0, 0}));
    EXPECT_EQ(filtered(filterWith({.b2 = 1.0F}), impulse), (Samples{0, 0, 1000, 0}));
    EXPECT_EQ(filtered(filterWith({.b0 = 1.0F, .a1 = -0.5F}), impulse),
              (Samples{1000, 500, 250, 125}));
    EXPECT_EQ(filtered(filterWith({.b0 = 1.0F, .a2 = 0.5F}), impulse), (Samples{1000, 0, -500, 0}));
}

TEST(IIRFilter, the_delay_line_keeps_the_output_before_it_is_clipped) {
    EXPECT_EQ(filtered(filterWith({.b0 = 4.0F, .a1 = -0.5F}), {20000, 0, 0}),
              (Samples{32767, 32767, 20000}));
}

TEST(IIRFilter, the_arithmetic_is_that_of_32_bit_floating_point_term_by_term) {
    const Samples input = noise(5000);
    float x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    Samples expected;
    const auto [b0, b1, b2, a1, a2] = lowPass;
    for (const std::int16_t sample : input) {
        const float x = static_cast<float>(sample) / 32767.0F;
        float y = b0 * x;
        y += b1 * x1;
        y += b2 * x2;
        y -= a1 * y1;
        y -= a2 * y2;
        x2 = x1, x1 = x, y2 = y1, y1 = y;
        expected.push_back(y > 1.0F    ? std::int16_t{32767}
                           : y < -1.0F ? std::int16_t{-32768}
                                       : roundToInt16(y * 32767.0F));
    }
    EXPECT_EQ(filtered(filterWith(lowPass), input), expected);
}

std::vector<float> fractions(std::size_t count) {
    std::vector<float> samples;
    for (const std::int16_t sample : noise(count))
        samples.push_back(static_cast<float>(sample) / 32768.0F);
    return samples;
}

TEST(IIRFilter, fractions_are_filtered_in_64_bits_in_blocks_of_any_size) {
    const std::vector<float> source = fractions(1000);
    cIIRFilter filter = filterWith(lowPass);
    std::vector<float> samples = source;
    filter.processFractions(std::span(samples).first(300));
    filter.processFractions(std::span(samples).subspan(300));
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (std::size_t index = 0; index < source.size(); ++index) {
        const double x = source[index];
        const double y = double{lowPass.b0} * x + double{lowPass.b1} * x1 +
                         double{lowPass.b2} * x2 - double{lowPass.a1} * y1 -
                         double{lowPass.a2} * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        EXPECT_NEAR(samples[index], y, 1e-7) << index;
    }
}

TEST(IIRFilter, fractions_that_have_faded_out_are_silent_from_the_next_block_on) {
    cIIRFilter filter = filterWith(lowPass);
    std::vector<float> samples(100);
    samples[0] = 0.5F;
    filter.processFractions(samples);
    EXPECT_NE(samples[10], 0.0F);
    std::vector<float> next(100);
    filter.processFractions(next);
    EXPECT_EQ(next, std::vector<float>(100));
}

TEST(IIRFilter, fractions_that_are_no_finite_number_become_silence_and_the_next_block_is_right) {
    cIIRFilter filter = filterWith(lowPass);
    std::vector<float> samples(100, 0.25F);
    samples[50] = std::numeric_limits<float>::quiet_NaN();
    filter.processFractions(samples);
    EXPECT_NE(samples[49], 0.0F);
    for (std::size_t index = 50; index < samples.size(); ++index)
        EXPECT_EQ(samples[index], 0.0F) << index;
    std::vector<float> next = fractions(100);
    std::vector<float> expected = next;
    filterWith(lowPass).processFractions(expected);
    filter.processFractions(next);
    EXPECT_EQ(next, expected);
}

TEST(IIRFilter, two_halves_of_a_block_give_the_same_as_the_whole) {
    const Samples whole = noise(1001);
    Samples first(whole.begin(), whole.begin() + 500);
    Samples second(whole.begin() + 500, whole.end());
    auto filter = filterWith(lowPass);
    filter.ProcessSamples(first, 499);
    filter.ProcessSamples(second, 500);
    first.insert(first.end(), second.begin(), second.end());
    EXPECT_EQ(first, filtered(filterWith(lowPass), whole));
}

TEST(IIRFilter, clearing_the_delay_line_starts_a_new_stream) {
    const Samples block = noise(100);
    auto filter = filterWith(lowPass);
    Samples earlier = block;
    filter.ProcessSamples(earlier, 99);
    EXPECT_NE(filtered(filter, block), filtered(filterWith(lowPass), block));
    filter.ClearDelayLine();
    EXPECT_EQ(filtered(filter, block), filtered(filterWith(lowPass), block));
    EXPECT_EQ(filter.Coefficients(), lowPass);
}

TEST(IIRFilter, new_coefficients_keep_the_delay_line) {
    auto filter = filterWith({.b0 = 1.0F});
    Samples samples{1000};
    filter.ProcessSamples(samples, 0);
    filter.SetCoefficients({.b1 = 1.0F});
    samples = {0};
    filter.ProcessSamples(samples, 0);
    EXPECT_EQ(samples, Samples{1000});
}

TEST(IIRFilter, an_index_beyond_the_samples_raises_subscript_and_keeps_what_was_processed) {
    for (const std::int32_t lastIndex : {2, std::numeric_limits<std::int32_t>::max()}) {
        auto filter = filterWith({.b0 = -1.0F});
        Samples samples{5, 6};
        EXPECT_EQ(errorNumberOf([&] { filter.ProcessSamples(samples, lastIndex); }), 9);
        EXPECT_EQ(samples, (Samples{-5, -6}));
    }
    cIIRFilter filter;
    EXPECT_EQ(errorNumberOf([&] { filter.ProcessSamples({}, 0); }), 9);
}

TEST(IIRFilter, an_output_that_is_no_finite_number_raises_overflow_and_keeps_what_was_processed) {
    auto filter = filterWith({.b0 = 1.0F, .b1 = std::numeric_limits<float>::infinity()});
    Samples samples{0, 7, 8};
    EXPECT_EQ(errorNumberOf([&] { filter.ProcessSamples(samples, 2); }), 6);
    EXPECT_EQ(samples, (Samples{0, 7, 8}));
}

TEST(IIRFilter, a_runaway_filter_ends_in_overflow_and_works_again_once_it_is_cleared) {
    auto filter = filterWith({.b0 = 1.0F, .a1 = -16.0F});
    Samples samples(200, 0);
    samples[0] = 16384;
    EXPECT_EQ(errorNumberOf([&] { filter.ProcessSamples(samples, 199); }), 6);
    EXPECT_EQ(samples[1], 32767);
    EXPECT_EQ(samples[30], 32767);
    EXPECT_EQ(samples[199], 0);
    filter.ClearDelayLine();
    EXPECT_EQ(filtered(filter, {16384}), Samples{16384});
}

} // namespace
} // namespace corvina
