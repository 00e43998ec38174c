#include "graph/ChannelCurves.h"

#include "runtime/Rounding.h"

#include <algorithm>
#include <cstddef>

namespace corvina {
namespace {

constexpr double fullScale = 32768.0;

// The part of the surface that belongs to one channel.
struct Strip {
    LONG top;
    LONG height;

    [[nodiscard]] LONG rowOf(std::int16_t sample) const {
        const double half = (height - 1) / 2.0;
        return top + roundToInt32(half - half * sample / fullScale);
    }
};

std::vector<POINT> curveOf(const SampleBlock& block, std::size_t channel, LONG width,
                           const Strip& strip) {
    const auto channels = static_cast<std::size_t>(block.channels);
    const std::size_t frames = block.samples.size() / channels;
    const auto columns = static_cast<std::size_t>(width);
    const auto sampleAt = [&](std::size_t frame) {
        return block.samples[frame * channels + channel];
    };

    std::vector<POINT> corners;
    if (frames <= columns) {
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const std::size_t x = frames > 1 ? frame * (columns - 1) / (frames - 1) : 0;
            corners.push_back({static_cast<LONG>(x), strip.rowOf(sampleAt(frame))});
        }
        return corners;
    }
    for (std::size_t column = 0; column < columns; ++column) {
        std::int16_t lowest = sampleAt(column * frames / columns);
        std::int16_t highest = lowest;
        for (std::size_t frame = column * frames / columns; frame < (column + 1) * frames / columns;
             ++frame) {
            lowest = std::min(lowest, sampleAt(frame));
            highest = std::max(highest, sampleAt(frame));
        }
        corners.push_back({static_cast<LONG>(column), strip.rowOf(highest)});
        corners.push_back({static_cast<LONG>(column), strip.rowOf(lowest)});
    }
    return corners;
}

} // namespace

std::vector<std::vector<POINT>> channelCurves(const SampleBlock& block, SIZE size) {
    std::vector<std::vector<POINT>> curves;
    if (size.cx <= 0 || size.cy <= 0 || block.channels <= 0 ||
        block.samples.size() < static_cast<std::size_t>(block.channels))
        return curves;
    constexpr LONG leastHeight = 2;
    const LONG shown = std::min<LONG>(block.channels, size.cy / leastHeight);
    for (LONG channel = 0; channel < shown; ++channel) {
        const LONG top = channel * size.cy / shown;
        const LONG bottom = (channel + 1) * size.cy / shown;
        curves.push_back(
            curveOf(block, static_cast<std::size_t>(channel), size.cx, {top, bottom - top}));
    }
    return curves;
}

} // namespace corvina
