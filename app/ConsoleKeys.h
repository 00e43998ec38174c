#pragma once

// The keys pressed on the terminal, when standard input is one; otherwise there are none.
//
// While it lives, the terminal neither echoes nor collects lines; Ctrl+C stays a signal.

#include <windows.h>

#include <optional>

namespace corvina::app {

enum class Key {
    pause,
    back,
    forward,
    next,
    previous,
    stop,
    shuffle,
    repeat,
    loop,
    louder,
    quieter,
    mute,
    quit
};

class ConsoleKeys {
public:
    ConsoleKeys();
    ~ConsoleKeys();
    ConsoleKeys(const ConsoleKeys&) = delete;
    ConsoleKeys& operator=(const ConsoleKeys&) = delete;

    // The next key pressed that has a meaning here; none if there is no further one. Does not wait.
    [[nodiscard]] std::optional<Key> next();

    // Signalled while there is input to read; null without a terminal.
    [[nodiscard]] HANDLE waitable() const noexcept { return input_; }

private:
    HANDLE input_ = nullptr;
    DWORD oldMode_ = 0;
};

} // namespace corvina::app
