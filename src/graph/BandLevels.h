#pragma once

// The heights of the spectrum's bars: a spectrum of the samples, gathered into bands that rise at
// once and fall slowly.
//
// Deliberate: an operation that cannot be done (an index outside an array, an overflow) is skipped
// and the rest goes on. So every number of bands is safe and nothing is raised; hosts set numbers
// beyond the spectrum's. Only the first 1024 bands have a level.

#include "graph/SampleBuffer.h"
#include "graph/clsFourier.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace corvina {

class BandLevels {
public:
    static constexpr std::int32_t capacity = 1024;

    // Advances by one picture: all levels fall by 0.07, then the samples raise them again.
    void update(const SampleBuffer& samples, std::int32_t bands);

    // Each 0 ... 1. Levels beyond the number of bands keep the value of their last use.
    [[nodiscard]] std::span<const double, capacity> levels() const noexcept { return levels_; }

    // The average of the nine lowest bands, 0 ... 100.
    [[nodiscard]] std::int32_t loudness() const;

private:
    void decay(std::int32_t used) noexcept;
    void readSpectrum(const SampleBuffer& samples);
    void lift(std::int32_t used, std::int32_t bands) noexcept;

    std::optional<clsFourier> fourier_; // made with the first picture
    // Only the lower half is ever written; bands beyond it add zeros.
    std::array<float, SampleBuffer::sampleCount> spectrum_{};
    std::array<double, capacity> levels_{};
};

} // namespace corvina
