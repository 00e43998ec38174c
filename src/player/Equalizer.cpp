#include "player/Equalizer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace corvina {
namespace {

// Until what a filter remembers has become a ten thousandth: its poles, whose square is a2, are
// multiplied with it for each frame.
std::size_t framesToFade(const BiquadCoefficients& filter) noexcept {
    return static_cast<std::size_t>(std::ceil(2 * std::log(1e-4) / std::log(std::fabs(filter.a2))));
}

} // namespace

double bandFrequency(std::size_t band) noexcept {
    return std::ldexp(31.25, static_cast<int>(band));
}

BiquadCoefficients peakingFilter(double frequency, double sampleRate, double gain) noexcept {
    const double angle = 2 * std::numbers::pi * frequency / sampleRate;
    const double sine = std::sin(angle);
    // Half an octave to each side, measured where the gain in decibels is halved.
    const double width = sine * std::sinh(std::numbers::ln2 / 2 * angle / sine);
    const double amplitude = std::pow(10.0, gain / 40);
    const double a0 = 1 + width / amplitude;
    const auto part = [a0](double value) { return static_cast<float>(value / a0); };
    return {.b0 = part(1 + width * amplitude),
            .b1 = part(-2 * std::cos(angle)),
            .b2 = part(1 - width * amplitude),
            .a1 = part(-2 * std::cos(angle)),
            .a2 = part(1 - width / amplitude)};
}

Equalizer::Equalizer(std::int32_t sampleRate, const Gains& gains) noexcept
    : sampleRate_(sampleRate) {
    setGains(gains);
    for (auto& channel : filters_)
        for (Filter& filter : channel)
            filter.begins = false;
}

void Equalizer::setGains(const Gains& gains) noexcept {
    for (std::size_t band = 0; band < gains.size(); ++band) {
        if (gains[band] == gains_[band] || 2 * bandFrequency(band) >= sampleRate_)
            continue;
        const bool begins = !works(band);
        const BiquadCoefficients coefficients =
            peakingFilter(bandFrequency(band), sampleRate_, gains[band]);
        for (auto& channel : filters_) {
            channel[band].biquad.SetCoefficients(coefficients);
            channel[band].begins = channel[band].begins || begins;
        }
        fading_[band] = gains[band] == 0.0F ? framesToFade(coefficients) : 0;
    }
    gains_ = gains;
}

bool Equalizer::idle() const noexcept {
    for (std::size_t band = 0; band < gains_.size(); ++band)
        if (works(band) && 2 * bandFrequency(band) < sampleRate_)
            return false;
    return true;
}

void Equalizer::process(std::size_t channel, std::span<float> samples) noexcept {
    if (channel >= filters_.size() || samples.empty())
        return;
    for (std::size_t band = 0; band < gains_.size(); ++band) {
        if (!works(band) || 2 * bandFrequency(band) >= sampleRate_)
            continue;
        Filter& filter = filters_[channel][band];
        if (std::exchange(filter.begins, false))
            filter.biquad.fillDelayLine(samples.front());
        filter.biquad.processFractions(samples);
    }
}

void Equalizer::advance(std::size_t frames) noexcept {
    for (std::size_t& left : fading_)
        left -= std::min(left, frames);
}

float softLimit(float sample) noexcept {
    constexpr float straight = 0.9F;
    const float size = std::fabs(sample);
    if (size <= straight)
        return sample;
    const float bent = straight + (1 - straight) * std::tanh((size - straight) / (1 - straight));
    return std::copysign(bent, sample);
}

} // namespace corvina
