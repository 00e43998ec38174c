#pragma once

// A second-order recursive filter (biquad) that works in place on 16-bit samples:
//
//   y = b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2
//
// with x and y as fractions of 32767 in 32-bit floating point. The two last inputs and outputs stay
// between calls, so the blocks of one stream are filtered without a seam. A new filter has only
// zero coefficients and turns everything into silence: set them first.
//
// One filter serves one channel: separate the samples of several channels first.
// One thread.

#include <cstdint>
#include <span>

namespace corvina {

// The feedback coefficients a1 and a2 are subtracted, and a0 is 1: divide the others by it.
struct BiquadCoefficients {
    float b0 = 0.0F;
    float b1 = 0.0F;
    float b2 = 0.0F;
    float a1 = 0.0F;
    float a2 = 0.0F;
    bool operator==(const BiquadCoefficients&) const = default;
};

class cIIRFilter {
public:
    // Takes effect from the next sample on and keeps the delay line, so that coefficients can be
    // changed within a stream; clear the delay line as well to start a new one.
    void SetCoefficients(const BiquadCoefficients& coefficients) noexcept {
        coefficients_ = coefficients;
    }
    [[nodiscard]] const BiquadCoefficients& Coefficients() const noexcept { return coefficients_; }

    void ClearDelayLine() noexcept { delay_ = {}; }
    // As if that sample, as a fraction of full scale, had gone in and come out for ever.
    void fillDelayLine(float sample) noexcept { delay_ = {sample, sample, sample, sample}; }

    // Filters the samples with the indexes 0 ... lastIndex; a negative lastIndex filters none.
    // Errors: 9 (subscript) when lastIndex is beyond the samples, 6 (overflow) when an output is no
    // finite number. What was filtered until then stays filtered.
    void ProcessSamples(std::span<std::int16_t> samples, std::int32_t lastIndex);
    // The same on fractions, which are neither rounded nor limited: for filters one behind the
    // other. It counts in 64 bits, for a filter of a low frequency feeds back what was rounded a
    // thousand times. An output that is no finite number clears the delay line and becomes 0.
    void processFractions(std::span<float> samples) noexcept;

private:
    struct DelayLine {
        double x1 = 0.0;
        double x2 = 0.0;
        double y1 = 0.0;
        double y2 = 0.0;
    };

    // Filters all of samples, or up to the first whose output is no finite number; returns how
    // many.
    [[nodiscard]] std::size_t filter(std::span<std::int16_t> samples) noexcept;

    BiquadCoefficients coefficients_;
    DelayLine delay_;
};

} // namespace corvina
