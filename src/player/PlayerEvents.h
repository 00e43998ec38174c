#pragma once

// The events of the player. A handler may call every member of the player.

#include <cstdint>
#include <string>

namespace corvina {

class PlayerEvents {
public:
    // A failure: the procedure (often with ":" and the failing platform function), the number and
    // what it means in words.
    virtual void Err(const std::wstring& functionName, std::int32_t number,
                     const std::wstring& description) noexcept = 0;
    // Playback has ended and the device is closed.
    virtual void DonePlay() noexcept = 0;

protected:
    ~PlayerEvents() = default;
};

} // namespace corvina
