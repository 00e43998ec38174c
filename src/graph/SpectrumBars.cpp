#include "graph/SpectrumBars.h"

#include "graph/BandLevels.h"
#include "runtime/BitReversal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace corvina {
namespace {

constexpr double fallPerPicture = 0.07;
constexpr double fullBar = 0.1;
constexpr double lowestDecibels = -60.0;
constexpr double lowestHertz = 20.0;
constexpr double highestHertz = 20000.0;
constexpr double fullScale = 32768.0;
// Long enough to tell the bars of the low octaves apart.
constexpr std::size_t leastTransform = 4096;

double heightOf(double amplitude, LevelScale scale) noexcept {
    if (scale == LevelScale::linear)
        return std::min(amplitude / fullBar, 1.0);
    if (amplitude <= 0.0)
        return 0.0;
    return std::clamp(1.0 - 20.0 * std::log10(amplitude) / lowestDecibels, 0.0, 1.0);
}

std::vector<double> asOneSequence(const SampleBuffer& samples) {
    std::vector<double> values(SampleBuffer::sampleCount);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = samples[i] / fullScale;
    return values;
}

std::vector<double> mixed(const SampleBlock& block) {
    const auto channels = static_cast<std::size_t>(std::max(block.channels, 1));
    std::vector<double> values(block.samples.size() / channels);
    for (std::size_t frame = 0; frame < values.size(); ++frame) {
        double sum = 0.0;
        for (std::size_t channel = 0; channel < channels; ++channel)
            sum += block.samples[frame * channels + channel];
        values[frame] = sum / static_cast<double>(channels) / fullScale;
    }
    return values;
}

} // namespace

void SpectrumBars::update(const SampleBuffer& samples, const SampleBlock& block,
                          const GraphSettings& settings) {
    const bool octaves = settings.frequencyAxis == FrequencyAxis::octaves;
    std::vector<double> values = octaves ? mixed(block) : asOneSequence(samples);
    const std::size_t size =
        std::bit_ceil(octaves ? std::max(values.size(), leastTransform) : values.size());
    if (data_.size() != size) {
        transform_.emplace(static_cast<std::int32_t>(size));
        data_.resize(size);
    }
    analyse(values);

    levels_.resize(static_cast<std::size_t>(
        std::clamp(settings.bands, std::int32_t{0}, BandLevels::capacity)));
    const double rate = std::max(block.sampleRate, 1);
    const double top = std::min(highestHertz, rate / 2.0);
    const auto binAt = [&](std::size_t bar) {
        const double part = static_cast<double>(bar) / static_cast<double>(levels_.size());
        return lowestHertz * std::pow(top / lowestHertz, part) / rate * static_cast<double>(size);
    };
    for (std::size_t bar = 0; bar < levels_.size(); ++bar) {
        const double amplitude =
            octaves ? amplitudeBetween(binAt(bar), binAt(bar + 1)) : bandAmplitude(bar);
        levels_[bar] = std::max(
            {levels_[bar] - fallPerPicture, 0.0, heightOf(amplitude, settings.levelScale)});
    }
}

void SpectrumBars::analyse(std::span<double> values) {
    std::ranges::fill(data_, Complex{});
    const int bits = std::countr_zero(data_.size());
    const double step =
        2.0 * std::numbers::pi / std::max(static_cast<double>(values.size()) - 1.0, 1.0);
    double weights = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double angle = step * static_cast<double>(i);
        const double weight = 0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle);
        weights += weight;
        data_[reverseBits(static_cast<std::uint32_t>(i), bits)].re = values[i] * weight;
    }
    transform_->run(data_);
    amplitudes_.resize(data_.size() / 2);
    for (std::size_t bin = 0; bin < amplitudes_.size(); ++bin)
        amplitudes_[bin] =
            weights > 0.0 ? 2.0 * std::hypot(data_[bin].re, data_[bin].im) / weights : 0.0;
}

// Bins 5 b + 1 to 5 b + 4, as in BandLevels.
double SpectrumBars::bandAmplitude(std::size_t band) const noexcept {
    double highest = 0.0;
    for (std::size_t bin = 5 * band + 1; bin < std::min(5 * band + 5, amplitudes_.size()); ++bin)
        highest = std::max(highest, amplitudes_[bin]);
    return highest;
}

// The highest of the bins in the range, or between two of them if the range holds none.
double SpectrumBars::amplitudeBetween(double lowBin, double highBin) const noexcept {
    const auto amplitudeAt = [this](double bin) {
        const auto below = static_cast<std::size_t>(bin);
        if (below + 1 >= amplitudes_.size())
            return 0.0;
        const double part = bin - static_cast<double>(below);
        return amplitudes_[below] * (1.0 - part) + amplitudes_[below + 1] * part;
    };
    double highest = amplitudeAt((lowBin + highBin) / 2.0);
    for (auto bin = static_cast<std::size_t>(std::ceil(lowBin));
         static_cast<double>(bin) < highBin && bin < amplitudes_.size(); ++bin)
        highest = std::max(highest, amplitudes_[bin]);
    return highest;
}

} // namespace corvina
