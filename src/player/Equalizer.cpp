#include "player/Equalizer.h"

#include <cmath>
#include <numbers>

namespace corvina {

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

void Equalizer::setGains(const Gains& gains) noexcept {
    for (std::size_t band = 0; band < gains.size(); ++band) {
        if (gains[band] == gains_[band])
            continue;
        // A band that was off has not seen the stream: what it remembers is old.
        const bool begins = gains_[band] == 0.0F;
        const BiquadCoefficients coefficients =
            peakingFilter(bandFrequency(band), sampleRate_, gains[band]);
        for (auto& channel : filters_) {
            channel[band].SetCoefficients(coefficients);
            if (begins)
                channel[band].ClearDelayLine();
        }
    }
    gains_ = gains;
}

void Equalizer::process(std::size_t channel, std::span<float> samples) noexcept {
    if (channel >= filters_.size())
        return;
    for (std::size_t band = 0; band < gains_.size(); ++band)
        if (gains_[band] != 0.0F && 2 * bandFrequency(band) < sampleRate_)
            filters_[channel][band].processFractions(samples);
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
