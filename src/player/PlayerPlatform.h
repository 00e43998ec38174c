#pragma once

// What the player uses of the system, with the real functions by default; a test passes its own.
// The tables must outlive the player.

#include "platform/AcmApi.h"
#include "platform/FileApi.h"
#include "platform/LibraryApi.h"
#include "platform/WaveApi.h"
#include "platform/WindowApi.h"
#include "player/MakeSources.h"
#include "player/PlaybackState.h"

namespace corvina {

struct PlayerPlatform {
    const WaveApi& wave = systemWaveApi;
    const WindowApi& windows = systemWindowApi;
    const AcmApi& acm = systemAcmApi;
    const FileApi& files = systemFileApi;
    std::vector<std::unique_ptr<cSoundSTRM>> (*makeSources)() = &corvina::makeSources;
    PlaybackTrace trace = nullptr;
    const LibraryApi& libraries = systemLibraryApi;
};

} // namespace corvina
