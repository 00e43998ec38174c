#include "graph/SamplePicture.h"

#include "graph/AudioGraph.h"

#include <array>
#include <cmath>
#include <numbers>

namespace corvina {
namespace {

// A chord whose higher tones are the quieter ones, swelling and fading within the block.
std::array<std::int16_t, SampleBuffer::sampleCount / 2> chord() {
    std::array<std::int16_t, SampleBuffer::sampleCount / 2> samples{};
    const auto count = static_cast<double>(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double part = static_cast<double>(i) / count;
        double sum = 0.0;
        for (int tone = 1; tone <= 24; ++tone)
            sum += std::sin(2.0 * std::numbers::pi * 5.5 * tone * part) / tone;
        const double swell = std::sin(std::numbers::pi * part);
        samples[i] = static_cast<std::int16_t>(16000.0 * swell * sum);
    }
    return samples;
}

} // namespace

void paintSamplePicture(HDC dc, const RECT& bounds, SIZE size, const GraphSettings& settings) {
    const auto samples = chord();
    static_assert(sizeof samples >= SampleBuffer::blockBytes);
    AudioGraph graph;
    graph.takeSamples(samples.data());
    graph.display(settings, size, [] {});
    graph.paint(dc, bounds, size);
}

} // namespace corvina
