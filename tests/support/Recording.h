#pragma once

// What the sound server of the stage has heard: a file that grows by 44100 16-bit stereo frames a
// second, silence included, whether or not anything plays. Environment variable CORVINA_HEARD names
// it; without one (a run on real hardware) there is no recording.

#include "support/SoundSignal.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace corvina::test {

class Recording {
public:
    Recording();

    [[nodiscard]] bool available() const noexcept { return !path_.empty(); }

    // How much was heard up to now, in frames: a position to listen from.
    [[nodiscard]] std::size_t now() const;

    // Everything heard from a position on.
    [[nodiscard]] Frames since(std::size_t position) const;

    // The first position at or after the given one at which something sounded.
    [[nodiscard]] std::optional<std::size_t> soundSince(std::size_t position) const;

    // Listens, dispatching messages, until something has sounded after the position and the given
    // number of frames has followed its beginning. Returns the frames from that beginning on (so
    // many, or fewer when the deadline has passed).
    [[nodiscard]] Frames listen(std::size_t position, std::size_t frames,
                                std::chrono::milliseconds deadline) const;

private:
    std::wstring path_;
};

// What is left of a recording behind its last sound.
[[nodiscard]] Frames withoutSilenceBehind(Frames frames);

// Index of the first frame in which the two differ, the shorter length where one goes on; nothing
// where they are the same.
[[nodiscard]] std::optional<std::size_t> firstDifference(const Frames& expected,
                                                         const Frames& heard);

} // namespace corvina::test
