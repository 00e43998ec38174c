#pragma once

// Compares what was heard with what was played.
//
// Two things can go wrong, and they are not the same. A sample that is missing, repeated or changed
// is the player's fault, always. Silence between two right samples is an underrun: the player may
// have come late, but so does a sound server on a busy machine, with any program. Behind an
// underrun samples may be missing too: Wine's device counts the silence as played, so it hands the
// last blocks back too early, and closing it cuts them off.

#include "support/Recording.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

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

struct Jump {
    std::size_t at = 0; // first frame of the whole sound that was not heard
    Comparison behind;  // of the rest with what was heard from there on
};

// heard: first the whole sound, then, from some frame on, this rest of it. Silence between the two
// does not matter.
[[nodiscard]] inline Jump compareAcrossJump(const Frames& whole, const Frames& rest, Frames heard) {
    Jump jump;
    heard = withoutSilenceBehind(std::move(heard));
    const std::size_t silent = std::erase(heard, Frame{});
    jump.at = compare(whole, heard).difference.value_or(whole.size());
    const std::size_t first = std::min(jump.at, heard.size());
    jump.behind =
        compare(rest, Frames(heard.begin() + static_cast<std::ptrdiff_t>(first), heard.end()));
    jump.behind.underrunFrames = jump.behind.difference ? silent : 0;
    return jump;
}

} // namespace corvina::test
