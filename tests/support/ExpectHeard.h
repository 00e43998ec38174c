#pragma once

// Expects that a playback is heard whole. Fails at once where a sample is wrong and nothing but the
// player can be the reason; where the playback was interrupted by silence (Comparison.h says why),
// asks for another one, three in all.

#include "support/Comparison.h"

#include <gtest/gtest.h>

namespace corvina::test {

// play: a function that plays once and compares what was heard.
template <typename Play>
void expectExact(Play play) {
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
void expectHeard(const Frames& expected, Play play) {
    expectExact([&] { return compare(expected, play()); });
}

} // namespace corvina::test
