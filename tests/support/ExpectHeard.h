#pragma once

// Expects that a playback is heard whole: fails at once where a sample is wrong, and asks for
// another playback where silence lies between right ones (Comparison.h says why), three times in
// all.

#include "support/Comparison.h"

#include <gtest/gtest.h>

namespace corvina::test {

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
