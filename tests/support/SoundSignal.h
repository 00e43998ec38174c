#pragma once

// Sound that a recording can be compared with, sample by sample: 16-bit stereo frames that are
// never silent, differ everywhere and are the same each time. The silence before and behind them is
// then plain to see.

#include "support/WavBytes.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace corvina::test {

struct Frame {
    std::int16_t left = 0;
    std::int16_t right = 0;
    friend bool operator==(const Frame&, const Frame&) = default;
};

using Frames = std::vector<Frame>;

// Neither channel is ever 0, and two signals of different seeds add up without clipping.
[[nodiscard]] inline Frames signal(std::size_t frames, std::uint32_t seed = 1) {
    const auto sample = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        const auto size = static_cast<std::int16_t>(1 + (seed >> 16) % 12000);
        return static_cast<std::int16_t>(seed & 0x1000 ? size : -size);
    };
    Frames result(frames);
    for (Frame& frame : result)
        frame = {sample(), sample()};
    return result;
}

[[nodiscard]] inline Bytes bytesOf(const Frames& frames) {
    Bytes bytes(frames.size() * sizeof(Frame));
    std::memcpy(bytes.data(), frames.data(), bytes.size());
    return bytes;
}

// A file of CD quality, which nothing has to convert.
[[nodiscard]] inline Bytes stereoWav(const Frames& frames) {
    return plainWav(pcm(44100, 2, 16), bytesOf(frames));
}

} // namespace corvina::test
