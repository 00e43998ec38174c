#pragma once

// Compares what was heard with what was played.
//
// Two things can go wrong, and they are not the same. A sample that is missing, repeated or changed
// is the player's fault, always. Silence between two right samples is an underrun: the player may
// have come late, but so does a sound server on a busy machine, with any program. So a test fails
// at once on the first, and asks for another playback on the second, three times in all.

#include "support/Recording.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <optional>

namespace corvina::test {

struct Comparison {
    std::size_t underrunFrames = 0;        // silence within the sound
    std::optional<std::size_t> difference; // first frame of the expected sound that is not right

    [[nodiscard]] bool exact() const { return underrunFrames == 0 && !difference; }
};

// heard begins with sound; what follows behind the expected frames does not matter.
[[nodiscard]] inline Comparison compare(const Frames& expected, const Frames& heard) {
    Comparison result;
    std::size_t at = 0;
    for (std::size_t index = 0; index < expected.size(); ++index, ++at) {
        for (; at < heard.size() && heard[at] == Frame{}; ++at)
            ++result.underrunFrames;
        if (at >= heard.size() || heard[at] != expected[index]) {
            result.difference = index;
            break;
        }
    }
    return result;
}

// play: a function that plays once and returns what was heard, from its first sound on.
template <typename Play>
void expectHeard(const Frames& expected, Play play) {
    constexpr int attempts = 3;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const Frames heard = play();
        const Comparison result = compare(expected, heard);
        ASSERT_EQ(result.difference, std::nullopt)
            << "of " << expected.size() << " frames; " << heard.size() << " were heard, silence of "
            << result.underrunFrames << " frames among them";
        if (result.exact())
            return;
    }
    FAIL() << "each of " << attempts << " playbacks was interrupted by silence";
}

} // namespace corvina::test
