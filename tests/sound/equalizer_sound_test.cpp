// The equalizer's bands, as they are heard.

#include "SoundTest.h"
#include "support/EqualizerCurve.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace corvina::test {
namespace {

constexpr std::size_t bands = 10;
constexpr double rate = 44100;
// A busy sound server cuts off the very end of a playback.
constexpr std::size_t tailFrames = 8000;

// Part of a sound in which one frequency lasts.
struct Tone {
    double frequency = 0;
    std::size_t first = 0;
    std::size_t frames = 0;
};

// A sweep in steps through the octave around a frequency.
struct Sweep {
    Frames frames;
    std::vector<Tone> tones;
};

Sweep sweepThrough(double centre) {
    // The other channel has a constant level, which passes every band: silence shows an
    // interruption.
    constexpr std::int16_t level = 5000;
    constexpr double amplitude = 3000;
    Sweep sweep;
    double angle = 0;
    for (const double octaves : {-0.5, -0.25, 0.0, 0.25, 0.5}) {
        const double frequency = centre * std::pow(2, octaves);
        if (frequency > 20000)
            continue;
        // So long that the filter is in its steady state for the second half.
        const auto length = static_cast<std::size_t>(std::max(14 * rate / frequency, rate / 20));
        sweep.tones.push_back({frequency, sweep.frames.size(), length});
        for (std::size_t i = 0; i < length; ++i) {
            const auto sample = static_cast<std::int16_t>(std::lround(amplitude * std::sin(angle)));
            sweep.frames.push_back({sample, level});
            angle += 2 * std::numbers::pi * frequency / rate;
        }
    }
    return sweep;
}

// The amplitude of a tone in the left channel, from whole waves at its end.
double amplitudeOf(const Frames& frames, const Tone& tone) {
    const double waves = std::floor(static_cast<double>(tone.frames) / 2 * tone.frequency / rate);
    const auto length = static_cast<std::size_t>(std::lround(waves * rate / tone.frequency));
    double real = 0, imaginary = 0;
    for (std::size_t i = tone.first + tone.frames - length; i < tone.first + tone.frames; ++i) {
        const double angle = 2 * std::numbers::pi * tone.frequency * static_cast<double>(i) / rate;
        real += frames[i].left * std::cos(angle);
        imaginary += frames[i].left * std::sin(angle);
    }
    return 2 * std::hypot(real, imaginary) / static_cast<double>(length);
}

class EqualizerBand : public SoundTest, public ::testing::WithParamInterface<int> {};

TEST_P(EqualizerBand, is_heard_within_half_a_decibel_of_its_curve) {
    const auto band = static_cast<std::size_t>(GetParam());
    std::array<float, bands> gains{};
    gains[band] = band % 2 == 0 ? 12.0F : -12.0F;
    const Sweep sweep = sweepThrough(bandCentre(band));
    Frames longer = sweep.frames;
    longer.resize(longer.size() + tailFrames, longer.back());
    const std::wstring path = file(longer);
    Frames heard;
    expectExactPlayback([&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(S_OK, host.control()->put_EqualizerGain(GetParam() + 1, gains[band]));
        EXPECT_EQ(S_OK, host.control()->put_CleanEnd(VARIANT_TRUE));
        EXPECT_EQ(host.start(path), 0);
        EXPECT_TRUE(host.waitForDone());
        heard = recording.listen(before, sweep.frames.size(), 5s);
        heard.resize(std::min(heard.size(), sweep.frames.size()));
        Comparison result;
        for (const Frame& frame : heard)
            result.underrunFrames += frame == Frame{} ? 1 : 0;
        if (result.underrunFrames > 0)
            result.difference = 0;
        return result;
    });
    if (IsSkipped() || HasFatalFailure())
        return;
    ASSERT_EQ(heard.size(), sweep.frames.size());
    for (const Tone& tone : sweep.tones) {
        const double gain =
            20 * std::log10(amplitudeOf(heard, tone) / amplitudeOf(sweep.frames, tone));
        EXPECT_NEAR(gain, equalizerCurve(gains, tone.frequency), 0.5) << tone.frequency << " Hz";
    }
}
INSTANTIATE_TEST_SUITE_P(EachBand, EqualizerBand, ::testing::Range(0, static_cast<int>(bands)),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace corvina::test
