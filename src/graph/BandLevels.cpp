#include "graph/BandLevels.h"

#include "runtime/Rounding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvina {
namespace {

constexpr std::int32_t transformSize = 1024;
constexpr double fallPerPicture = 0.07;
// A tenth of full scale in one bin fills a bar: music seldom has more.
constexpr double fullBar = 0.1;
constexpr std::int32_t binsPerBand = 4;
constexpr std::int32_t loudnessBands = 9;

// Small at both ends of the spectrum and near 1 in its middle. Every step but the cosine is rounded
// to 32-bit floating point.
float bandWeight(std::int32_t band, std::int32_t bands) noexcept {
    constexpr float twoPi = 6.2831855F;
    const float angle = twoPi * static_cast<float>(band + 3) / static_cast<float>(bands + 3);
    return 0.5F * (1.0F - static_cast<float>(std::cos(static_cast<double>(angle))));
}

} // namespace

void BandLevels::update(const SampleBuffer& samples, std::int32_t bands) {
    const std::int32_t used = std::clamp(bands, std::int32_t{0}, capacity);
    decay(used);
    readSpectrum(samples);
    lift(used, bands);
}

void BandLevels::decay(std::int32_t used) noexcept {
    for (double& level : std::span(levels_).first(static_cast<std::size_t>(used)))
        level = std::max(level - fallPerPicture, 0.0);
}

void BandLevels::readSpectrum(const SampleBuffer& samples) {
    if (!fourier_)
        fourier_.emplace();
    // Also if there was no memory for its samples before.
    if (fourier_->NumberOfSamples() != transformSize) {
        fourier_->NumberOfSamples(transformSize);
        fourier_->WithTimeWindow(1);
    }
    for (std::int32_t i = 0; i < transformSize; ++i)
        fourier_->RealIn(i + 1, samples[static_cast<std::size_t>(i)]);
    for (std::int32_t bin = 0; bin <= transformSize / 2; ++bin) {
        float& value = spectrum_[static_cast<std::size_t>(bin)];
        value = static_cast<float>(fourier_->ComplexOut(bin + 1) / (transformSize / 4.0) / 32767.0);
        if (value > fullBar)
            value = static_cast<float>(fullBar);
        value = static_cast<float>(value / fullBar);
    }
}

void BandLevels::lift(std::int32_t used, std::int32_t bands) noexcept {
    // With so many bands that their number plus 3 overflows, the weight is never computed.
    const bool weighted = bands <= std::numeric_limits<std::int32_t>::max() - 3;
    std::size_t bin = 1;
    // Deliberately not reset for each band: a band takes a third (or more) of the one before with
    // it, which gives the bars a smooth outline.
    float sum = 0.0F;
    for (std::int32_t band = 0; band < used; ++band) {
        for (std::int32_t i = 0; i < binsPerBand; ++i, ++bin)
            if (bin < spectrum_.size())
                sum += spectrum_[bin];
        const float weight = weighted ? bandWeight(band, bands) : 0.0F;
        sum = (weight + 1.0F) * sum / 3.0F;
        double& level = levels_[static_cast<std::size_t>(band)];
        level = std::min(std::max(level, static_cast<double>(sum)), 1.0);
        ++bin; // deliberate: one bin between two bands belongs to neither
    }
}

std::int32_t BandLevels::loudness() const {
    std::int32_t total = 0;
    for (std::int32_t band = 0; band < loudnessBands; ++band) {
        // Deliberate: the running total is rounded after each band, not once at the end.
        total = roundToInt32(levels_[static_cast<std::size_t>(band)] * 100.0 + total);
    }
    return roundToInt32(static_cast<double>(total) / loudnessBands);
}

} // namespace corvina
