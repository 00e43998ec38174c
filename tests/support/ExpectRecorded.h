#pragma once

// Expects that a playback is recorded whole. A wrong sample fails at once, because only the player
// can be the reason. After an interruption by silence (Comparison.h says why) it plays again, three
// times in all.

#include "support/Comparison.h"

#include <gtest/gtest.h>

namespace corvina::test {

// play: a function that plays once and compares what was heard.
template <typename Play>
void expectExactPlayback(Play play) {
    constexpr int attempts = 3;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const Comparison result = play();
        if (result.exact())
            return;
        ASSERT_GT(result.underrunFrames, 0u)
            << "frame " << *result.difference << " is wrong, without any silence before it";
    }
    FAIL() << "each of " << attempts << " playbacks was interrupted by silence";
}

// play: a function that plays once and returns what was heard, from its first sound on.
template <typename Play>
void expectRecorded(const Frames& expected, Play play) {
    expectExactPlayback([&] { return compare(expected, play()); });
}

} // namespace corvina::test
