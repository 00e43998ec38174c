#pragma once

// What the sound server of the test environment has heard: a file that grows by 44100 16-bit stereo frames a
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

    // Listens, dispatching messages, until so many frames have sounded after the position (silence
    // among them does not count) or the deadline has passed. Returns all that was heard from the
    // first sound on.
    [[nodiscard]] Frames listen(std::size_t position, std::size_t frames,
                                std::chrono::milliseconds deadline) const;

    // The same until, after a sound, a quarter of a second was silent.
    [[nodiscard]] Frames listenUntilQuiet(std::size_t position,
                                          std::chrono::milliseconds deadline) const;

private:
    std::wstring path_;
};

// What is left of a recording behind its last sound.
[[nodiscard]] Frames withoutSilenceBehind(Frames frames);

} // namespace corvina::test
