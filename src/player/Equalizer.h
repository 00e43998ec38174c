#pragma once

// Ten peaking filters, an octave apart from 31.25 Hz, for each channel of a stream. A band at and
// above half the sample rate does nothing.
//
// A band begins and ends without a click: it begins as if the first sample had lasted for ever, and
// when its gain has become 0 it works on until what it remembers has faded. Then it costs nothing.
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

    // At the beginning of a stream: there was silence before it.
    Equalizer(std::int32_t sampleRate, const Gains& gains) noexcept;

    // Decibels. Takes effect from the next sample on.
    void setGains(const Gains& gains) noexcept;
    [[nodiscard]] const Gains& gains() const noexcept { return gains_; }
    // Every sample would pass unchanged.
    [[nodiscard]] bool idle() const noexcept;
    // One channel's samples, as fractions of full scale.
    void process(std::size_t channel, std::span<float> samples) noexcept;
    // Every channel's samples of so many frames were processed.
    void advance(std::size_t frames) noexcept;

private:
    struct Filter {
        cIIRFilter biquad;
        bool begins = false; // with the next sample
    };

    [[nodiscard]] bool works(std::size_t band) const noexcept {
        return gains_[band] != 0.0F || fading_[band] > 0;
    }

    std::int32_t sampleRate_;
    Gains gains_{};
    std::array<std::size_t, SoundSettings::bands> fading_{}; // frames left, by band
    std::array<std::array<Filter, SoundSettings::bands>, mostChannels> filters_;
};

// The coefficients of one band, an octave wide.
[[nodiscard]] BiquadCoefficients peakingFilter(double frequency, double sampleRate,
                                               double gain) noexcept;
[[nodiscard]] double bandFrequency(std::size_t band) noexcept;

// Bends what is near full scale or above it, so that nothing exceeds it.
[[nodiscard]] float softLimit(float sample) noexcept;

} // namespace corvina
