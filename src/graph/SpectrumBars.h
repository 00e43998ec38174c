#pragma once

// The heights of the bars with decibels as their scale or octaves as their axis. Bars rise at once
// and fall as those of BandLevels do.
//
// Linear: a tenth of full scale in a bar fills it. Decibels: the bottom is -60 dB, the top full
// scale. Octaves: the bars divide the range from 20 Hz to 20 kHz (or half the sample rate) into
// equal intervals, and the samples of all channels are mixed. Otherwise a bar has the same bins of
// the same transform as a band of BandLevels.

#include "graph/GraphSettings.h"
#include "graph/RadixTwoTransform.h"
#include "graph/SampleBuffer.h"
#include "stream/SampleFeed.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace corvina {

class SpectrumBars {
public:
    // samples: for the axis of bands; block: for the axis of octaves.
    void update(const SampleBuffer& samples, const SampleBlock& block,
                const GraphSettings& settings);
    void reset() noexcept { levels_.clear(); }

    // Each 0 ... 1, as many as there are bars; at most BandLevels::capacity.
    [[nodiscard]] std::span<const double> levels() const noexcept { return levels_; }

private:
    // The amplitude of each bin, 1 for a sine of full scale. values: windowed in place, padded with
    // zeros to the transform's size.
    void analyse(std::span<double> values);
    [[nodiscard]] double bandAmplitude(std::size_t band) const noexcept;
    [[nodiscard]] double amplitudeBetween(double lowBin, double highBin) const noexcept;

    std::optional<RadixTwoTransform> transform_;
    std::vector<Complex> data_; // of the last analysis
    std::vector<double> amplitudes_;
    std::vector<double> levels_;
};

} // namespace corvina
