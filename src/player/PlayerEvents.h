#pragma once

// The events of the player. A handler may call every member of the player.

#include <cstdint>
#include <string>
#include <windows.h>

#include "Corvina.h"

namespace corvina {

class PlayerEvents {
public:
    // A failure: the procedure (often with ":" and the failing platform function), the number and
    // what it means in words.
    virtual void Err(const std::wstring& functionName, std::int32_t number,
                     const std::wstring& description) noexcept = 0;
    // Playback has ended and the device is closed.
    virtual void DonePlay() noexcept = 0;

    // Exactly once for every successful start, behind its DonePlay if there is one.
    virtual void Ended(PlayEndReason reason) noexcept = 0;
    virtual void StateChanged(PlayState state) noexcept = 0;
    virtual void PositionChanged(std::int32_t milliseconds) noexcept = 0;
    virtual void NextStarted(const std::wstring& file) noexcept = 0;

    // Around events that no call of the host's causes: keeps the owner of the player alive.
    virtual void hold() noexcept {}
    virtual void letGo() noexcept {}

protected:
    ~PlayerEvents() = default;
};

} // namespace corvina
