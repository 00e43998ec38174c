#pragma once

// Compares what was heard with what was played.
//
// Two things can go wrong, and they are not the same. A sample that is missing, repeated or changed
// is the player's fault, always. Silence between two right samples is an underrun: the player may
// have come late, but so does a sound server on a busy machine, with any program. Behind an
// underrun samples may be missing too: Wine's device counts the silence as played, so it hands the
// last blocks back too early, and closing it cuts them off.

#include "support/Recording.h"

#include <cstddef>
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

} // namespace corvina::test
