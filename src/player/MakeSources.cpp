#include "player/MakeSources.h"

namespace corvina {
namespace {

template <typename... Sources>
std::vector<std::unique_ptr<cSoundSTRM>> makeAll() {
    std::vector<std::unique_ptr<cSoundSTRM>> sources;
    sources.reserve(sizeof...(Sources));
    (sources.push_back(std::make_unique<Sources>()), ...);
    return sources;
}

} // namespace

std::vector<std::unique_ptr<cSoundSTRM>> makeSources() {
    return makeAll<>();
}

} // namespace corvina
