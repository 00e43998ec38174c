#pragma once

// What the queue reports to those who show it. All are called on its thread; each may be empty.

#include <functional>
#include <string>

namespace corvina::app {

struct QueueHandlers {
    using Words = const std::wstring&;

    std::function<void()> started{};       // the current track is heard from now on
    std::function<void()> ended{};         // nothing plays any more, and nothing follows
    std::function<void(Words)> failed{};   // the current track could not be played
    std::function<void(Words)> remarked{}; // has no consequence
    std::function<void(Words)> noticed{};  // for the user; the track goes on
    std::function<void()> progressed{};    // another position is heard
    std::function<void()> stateChanged{};  // stopped, playing or paused
};

} // namespace corvina::app
