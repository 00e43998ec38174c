// The fast ways of rounding many samples beside the definition for one.

#include "stream/SampleRounding.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace corvina::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

constexpr std::uint32_t allBits = 0xFFFFFFFF;

template <typename Number>
void append(Bytes& bytes, Number number, std::size_t count = sizeof(Number)) {
    const auto* const first = reinterpret_cast<const std::uint8_t*>(&number);
    bytes.insert(bytes.end(), first, first + count);
}

// What can go wrong in floating point: around full scale, around single steps, no numbers, and
// numbers too small to be normal ones.
template <typename Number>
std::vector<Number> specialNumbers() {
    using Limits = std::numeric_limits<Number>;
    constexpr Number one = 1;
    constexpr Number step = one / 32768;
    std::vector<Number> numbers{0,
                                Limits::denorm_min(),
                                Limits::min(),
                                Limits::epsilon(),
                                step,
                                step / 2,
                                std::nextafter(step, Number{0}),
                                std::nextafter(step, one),
                                one - step,
                                std::nextafter(one, Number{0}),
                                one,
                                std::nextafter(one, Number{2}),
                                2,
                                Number{1e30F},
                                Limits::max(),
                                Limits::infinity(),
                                Limits::quiet_NaN(),
                                Limits::signaling_NaN()};
    for (std::size_t count = numbers.size(), index = 0; index < count; ++index)
        numbers.push_back(-numbers[index]);
    return numbers;
}

// Special samples among ordinary ones, so many in all.
Bytes samplesOf(SampleForm form, std::size_t count) {
    static const std::vector<float> floats = specialNumbers<float>();
    static const std::vector<double> doubles = specialNumbers<double>();
    static const std::vector<std::uint32_t> integers{
        0,          1,          0xFF,       0x100,      0x7FFF,     0x8000,     0xFFFF,
        0x10000,    0x18000,    0x7FFEFFFF, 0x7FFF0000, 0x7FFF0001, 0x7FFFFFFF, 0x80000000,
        0x80000001, 0x80008000, 0xFFFF0000, 0xFFFF8000, 0xFFFFFFFF};
    std::mt19937 random(static_cast<unsigned>(count));
    const auto any = [&random](const auto& numbers) { return numbers[random() % numbers.size()]; };
    std::uniform_real_distribution<double> ordinary(-1, 1);
    Bytes bytes;
    for (std::size_t index = 0; index < count; ++index) {
        const bool isSpecial = random() % 4 == 0;
        if (form == SampleForm::float32)
            append(bytes, isSpecial ? any(floats) : static_cast<float>(ordinary(random)));
        else if (form == SampleForm::float64)
            append(bytes, isSpecial ? any(doubles) : ordinary(random));
        else if (form == SampleForm::integer32)
            append(bytes, isSpecial ? any(integers) : static_cast<std::uint32_t>(random()));
        else
            append(bytes, (isSpecial ? any(integers) : static_cast<std::uint32_t>(random())) >> 8,
                   3);
    }
    return bytes;
}

// The noise of many comes from four generators in turn.
class OneByOne {
public:
    Samples round(SampleForm form, const Bytes& bytes, std::uint32_t valid) {
        Samples samples;
        for (std::size_t at = 0; at < bytes.size(); at += bytesOf(form)) {
            std::uint32_t& noise = states_[samples.size() % 4];
            noise = nextNoise(noise);
            samples.push_back(
                SampleRounding::roundWith(noise, sampleAt(form, bytes.data() + at, valid)));
        }
        return samples;
    }

private:
    NoiseStates states_{0x05491333, 0x159A55E5, 0x075BCD15, 0x1F123BB5};
};

// The places of the bytes and of the samples in memory are odd ones.
Samples roundMany(SampleRounding& rounding, SampleForm form, const Bytes& bytes,
                  std::uint32_t valid) {
    const std::size_t count = bytes.size() / bytesOf(form);
    Bytes source(1);
    source.insert(source.end(), bytes.begin(), bytes.end());
    Bytes output(1 + count * sizeof(std::int16_t), 0xEE);
    const std::size_t done =
        rounding.roundMany(form, source.data() + 1, output.data() + 1, count, valid);
    EXPECT_LE(done, count);
    EXPECT_GE(done + 9, count);
    for (std::size_t at = 1 + done * sizeof(std::int16_t); at < output.size(); ++at)
        EXPECT_EQ(output[at], 0xEE) << "behind what was done";
    Samples samples(done);
    if (done > 0)
        std::memcpy(samples.data(), output.data() + 1, done * sizeof samples[0]);
    return samples;
}

class ManySamples : public testing::TestWithParam<std::tuple<SampleForm, bool>> {
protected:
    SampleForm form = std::get<0>(GetParam());
    bool wide = std::get<1>(GetParam());
};

TEST_P(ManySamples, come_out_as_single_ones_do_whatever_their_number) {
    for (const std::size_t count : {0u, 1u, 2u, 7u, 8u, 9u, 10u, 2047u, 2048u, 2049u, 2050u, 2051u,
                                    2055u, 4095u, 4096u, 4098u, 20'000u}) {
        const Bytes bytes = samplesOf(form, count);
        SampleRounding rounding(wide);
        Samples expected = OneByOne().round(form, bytes, allBits);
        const Samples rounded = roundMany(rounding, form, bytes, allBits);
        expected.resize(rounded.size());
        EXPECT_EQ(rounded, expected) << count;
    }
}

TEST_P(ManySamples, go_on_with_the_noise_where_the_last_ones_stopped) {
    // Two whole blocks, eight samples and what is left to the caller.
    constexpr std::size_t done = 4104;
    const Bytes first = samplesOf(form, done + 2);
    const Bytes second = samplesOf(form, 3000);
    SampleRounding rounding(wide);
    OneByOne single;
    const Bytes counted(first.begin(), first.begin() + static_cast<int>(done * bytesOf(form)));
    EXPECT_EQ(roundMany(rounding, form, first, allBits), single.round(form, counted, allBits));
    Samples expected = single.round(form, second, allBits);
    const Samples rounded = roundMany(rounding, form, second, allBits);
    expected.resize(rounded.size());
    EXPECT_EQ(rounded, expected);
}

class ManyIntegers : public ManySamples {};

TEST_P(ManyIntegers, have_only_their_valid_bits) {
    const Bytes bytes = samplesOf(form, 5000);
    for (const std::uint32_t valid : {0xFFFF0000u, 0xFFFFF000u, 0xFF000000u}) {
        SampleRounding rounding(wide);
        Samples expected = OneByOne().round(form, bytes, valid);
        const Samples rounded = roundMany(rounding, form, bytes, valid);
        expected.resize(rounded.size());
        EXPECT_EQ(rounded, expected) << valid;
    }
}

std::string nameOf(const testing::TestParamInfo<std::tuple<SampleForm, bool>>& tested) {
    constexpr const char* forms[] = {"integer24", "integer32", "float32", "float64"};
    return std::string(forms[static_cast<int>(std::get<0>(tested.param))]) +
           (std::get<1>(tested.param) ? "_wide" : "_narrow");
}

// The ways that this processor has.
std::vector<bool> ways() {
    return SampleRounding::hasWideVectors() ? std::vector{false, true} : std::vector{false};
}

INSTANTIATE_TEST_SUITE_P(Forms, ManySamples,
                         testing::Combine(testing::Values(SampleForm::integer24,
                                                          SampleForm::integer32,
                                                          SampleForm::float32, SampleForm::float64),
                                          testing::ValuesIn(ways())),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Forms, ManyIntegers,
                         testing::Combine(testing::Values(SampleForm::integer24,
                                                          SampleForm::integer32),
                                          testing::ValuesIn(ways())),
                         nameOf);

// The noise reaches from one step below to one above, less a sixty-five-thousandth.
TEST(SampleRounding, adds_no_noise_to_a_sample_that_16_bits_hold) {
    for (const std::uint32_t noise : {0u, 0xFFFFu, 0xFFFF0000u, 0xFFFFFFFFu})
        for (const std::int32_t sample : {-32768, -1, 0, 1, 32767})
            EXPECT_EQ(SampleRounding::roundWith(noise, sample * 65536), sample);
}

TEST(SampleRounding, rounds_every_other_one_up_or_down_by_the_noise) {
    constexpr std::int32_t half = 100 * 65536 + 0x8000;
    EXPECT_EQ(SampleRounding::roundWith(0, half), 100);
    EXPECT_EQ(SampleRounding::roundWith(0x7FFF, half), 100);
    EXPECT_EQ(SampleRounding::roundWith(0xFFFE, half), 100);
    EXPECT_EQ(SampleRounding::roundWith(0xFFFF, half), 101);
    EXPECT_EQ(SampleRounding::roundWith(0xFFFFFFFF, half), 101);
    EXPECT_EQ(SampleRounding::roundWith(0xFFFFFFFF, 100 * 65536 + 0xFFFF), 102);
    EXPECT_EQ(SampleRounding::roundWith(0, 100 * 65536 + 1), 99);
}

TEST(SampleRounding, wraps_nothing_around) {
    EXPECT_EQ(SampleRounding::roundWith(0xFFFFFFFF, 0x7FFFFFFF), 32767);
    EXPECT_EQ(SampleRounding::roundWith(0, -0x7FFFFFFF), -32768);
}

} // namespace
} // namespace corvina::test
