#pragma once

// Tracks of numbered frames: mono, 16 bits, 1000 frames a second, so that a frame is a millisecond.

#include "player/PlayedTrack.h"
#include "support/FakeAcm.h"
#include "support/MemorySource.h"

#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace corvina::test {

using FrameNumbers = std::vector<std::int16_t>;

// first, first + 1 and so on.
[[nodiscard]] inline FrameNumbers numbersFrom(std::int16_t first, std::size_t count) {
    FrameNumbers numbers(count);
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

[[nodiscard]] inline std::shared_ptr<MemorySource>
numberedSource(std::int16_t first, std::size_t count, DWORD rate = 1000) {
    const FrameNumbers numbers = numbersFrom(first, count);
    Bytes bytes(count * sizeof(std::int16_t));
    if (count > 0)
        std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return std::make_shared<MemorySource>(pcm(rate, 1, 16), std::move(bytes));
}

} // namespace corvina::test
