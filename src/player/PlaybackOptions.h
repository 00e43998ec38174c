#pragma once

// What the host has set for the playbacks of a player. The player changes them, the engine reads
// them while it plays.

#include "player/SoundSettings.h"

#include <cstdint>
#include <string>

namespace corvina {

struct PlaybackOptions {
    SoundSettings sound;
    bool loops = false;
    bool cleanEnd = false;
    bool recovers = false;
    std::int32_t positionInterval = 0; // milliseconds; 0: PositionChanged is not raised
    std::wstring nextFile;             // empty: none
    std::wstring device;               // by name; empty: the system's choice
};

} // namespace corvina
