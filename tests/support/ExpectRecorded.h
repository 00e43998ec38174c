#pragma once

// Expects that a playback is recorded whole. Fails at once if a sample is wrong and nothing but the
// player can be the reason. A playback that was interrupted by silence (Comparison.h says why) is
// repeated: three times if the machine had time to spare, for then the player must be to blame; as
// often as there is patience for while the machine is busy with something else. If none of those is
// whole either, the test is skipped: nothing can be said about the player on such a machine.

#include "support/Comparison.h"
#include "support/MachineLoad.h"

#include <chrono>
#include <gtest/gtest.h>

namespace corvina::test {

// play: a function that plays once and compares what was heard.
template <typename Play>
void expectExactPlayback(Play play) {
    constexpr int attempts = 3;
    constexpr auto patience = std::chrono::seconds(45);
    const auto start = std::chrono::steady_clock::now();
    int interrupted = 0;
    do {
        const MachineLoad load;
        const Comparison result = play();
        if (result.exact())
            return;
        ASSERT_GT(result.underrunFrames, 0u)
            << "frame " << *result.difference << " is wrong, without any silence before it";
        if (!load.wasFull())
            ++interrupted;
        ASSERT_LT(interrupted, attempts)
            << "each of " << attempts << " playbacks was interrupted by silence";
    } while (std::chrono::steady_clock::now() - start < patience);
    GTEST_SKIP() << "the machine is too busy: it interrupted every playback";
}

// play: a function that plays once and returns what was heard, from its first sound on.
template <typename Play>
void expectRecorded(const Frames& expected, Play play) {
    expectExactPlayback([&] { return compare(expected, play()); });
}

} // namespace corvina::test
