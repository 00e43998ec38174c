#pragma once

// Ten peaking filters, an octave apart from 31.25 Hz, for each channel of a stream. A band with the
// gain 0, or at and above half the sample rate, costs nothing.
//
// What comes out may be louder than full scale: softLimit brings it back.
// A copy goes on as the original would: the state between blocks is copied too.

#include "graph/cIIRFilter.h"
#include "player/SoundSettings.h"

#include <array>
#include <cstdint>
#include <span>

namespace corvina {

class Equalizer {
public:
    // Channels behind these pass unchanged.
    static constexpr std::size_t mostChannels = 8;
    using Gains = std::array<float, SoundSettings::bands>;

    explicit Equalizer(std::int32_t sampleRate) noexcept : sampleRate_(sampleRate) {}

    // Decibels. Takes effect from the next sample on.
    void setGains(const Gains& gains) noexcept;
    [[nodiscard]] const Gains& gains() const noexcept { return gains_; }
    // One channel's samples, as fractions of full scale.
    void process(std::size_t channel, std::span<float> samples) noexcept;

private:
    std::int32_t sampleRate_;
    Gains gains_{};
    std::array<std::array<cIIRFilter, SoundSettings::bands>, mostChannels> filters_;
};

// The coefficients of one band, an octave wide.
[[nodiscard]] BiquadCoefficients peakingFilter(double frequency, double sampleRate,
                                               double gain) noexcept;
[[nodiscard]] double bandFrequency(std::size_t band) noexcept;

// Bends what is near full scale or above it, so that nothing exceeds it.
[[nodiscard]] float softLimit(float sample) noexcept;

} // namespace corvina
