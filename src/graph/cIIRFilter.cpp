#include "graph/cIIRFilter.h"

#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvina {

void cIIRFilter::ProcessSamples(std::span<std::int16_t> samples, std::int32_t lastIndex) {
    if (lastIndex < 0)
        return;
    const std::size_t wanted = static_cast<std::size_t>(lastIndex) + 1;
    const std::size_t count = std::min(wanted, samples.size());
    if (filter(samples.first(count)) < count)
        throwOverflow();
    if (count < wanted)
        throwSubscript();
}

std::size_t cIIRFilter::filter(std::span<std::int16_t> samples) noexcept {
    const auto [b0, b1, b2, a1, a2] = coefficients_;
    auto x1 = static_cast<float>(delay_.x1), x2 = static_cast<float>(delay_.x2);
    auto y1 = static_cast<float>(delay_.y1), y2 = static_cast<float>(delay_.y2);
    std::size_t done = 0;
    for (; done < samples.size(); ++done) {
        const float x = static_cast<float>(samples[done]) / 32767.0F;
        const float y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
        // Deliberately not symmetric: -1 becomes -32767, and only what is below it -32768.
        std::int16_t written = y > 0.0F ? 32767 : -32768;
        if (std::fabs(y) <= 1.0F)
            written = roundWithinInt16(y * 32767.0F);
        else if (!std::isfinite(y))
            break;
        samples[done] = written;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }
    delay_ = {x1, x2, y1, y2};
    return done;
}

void cIIRFilter::processFractions(std::span<float> samples) noexcept {
    // What fades out below this is silence. Much smaller numbers would slow the processor down.
    constexpr double silence = 1e-15;
    const double b0 = coefficients_.b0, b1 = coefficients_.b1, b2 = coefficients_.b2;
    const double a1 = coefficients_.a1, a2 = coefficients_.a2;
    auto [x1, x2, y1, y2] = delay_;
    for (float& sample : samples) {
        const double x = sample;
        // The output before, which is the last to be known, comes last: nothing else waits for it.
        const double y = (b0 * x + b1 * x1 + b2 * x2 - a2 * y2) - a1 * y1;
        sample = static_cast<float>(y);
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }
    if (std::fabs(y1) < silence && std::fabs(y2) < silence)
        y1 = y2 = 0.0;
    delay_ = {x1, x2, y1, y2};
    if (std::isfinite(y1) && std::isfinite(y2))
        return;
    delay_ = {};
    for (float& sample : samples)
        if (!std::isfinite(sample))
            sample = 0.0F;
}

} // namespace corvina
