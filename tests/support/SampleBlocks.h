#pragma once

// Blocks of samples for the graph.

#include "graph/SampleBuffer.h"

#include <bit>
#include <cmath>
#include <vector>

namespace corvina::test {

// samples: as many as a block holds at most; the rest stays silent.
[[nodiscard]] inline SampleBuffer bufferOf(std::vector<std::int16_t> samples) {
    samples.resize(512); // a block reaches into the last of these
    SampleBuffer buffer;
    buffer.take(samples.data());
    return buffer;
}

[[nodiscard]] inline SampleBuffer silence() {
    return {};
}

[[nodiscard]] inline std::int16_t sineSample(int bin, int amplitude, std::size_t index) {
    return static_cast<std::int16_t>(std::lround(
        amplitude * std::sin(2.0 * 3.14159265358979 * bin * static_cast<double>(index) / 1024)));
}

// A tone at the middle of a bin of a 1024-point spectrum, as long as a block.
[[nodiscard]] inline std::vector<std::int16_t> sineBlock(int bin, int amplitude) {
    std::vector<std::int16_t> samples(511);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = sineSample(bin, amplitude, i);
    return samples;
}

// A buffer with all its samples set, which no sequence of blocks can do.
template <typename Sample>
[[nodiscard]] SampleBuffer fullBuffer(Sample&& sample) {
    std::array<std::int16_t, SampleBuffer::sampleCount> samples{};
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = sample(i);
    return std::bit_cast<SampleBuffer>(samples);
}

// The tone in the whole buffer, without the steps in the middle that smear a block's spectrum.
[[nodiscard]] inline SampleBuffer sine(int bin, int amplitude) {
    return fullBuffer([=](std::size_t i) { return sineSample(bin, amplitude, i); });
}

} // namespace corvina::test
