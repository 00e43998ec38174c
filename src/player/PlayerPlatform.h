#pragma once

// What the player leans on, with the real things by default; a test passes its own. The tables must
// outlive the player.

#include "platform/AcmApi.h"
#include "platform/FileApi.h"
#include "platform/WaveApi.h"
#include "platform/WindowApi.h"
#include "player/MakeSources.h"

namespace corvina {

struct PlayerPlatform {
    const WaveApi& wave = systemWaveApi;
    const WindowApi& windows = systemWindowApi;
    const AcmApi& acm = systemAcmApi;
    const FileApi& files = systemFileApi;
    std::vector<std::unique_ptr<cSoundSTRM>> (*makeSources)() = &corvina::makeSources;
};

} // namespace corvina
