#include "player/MakeSources.h"

#include "sources/DecCDA.h"
#include "sources/DecWAV.h"

namespace corvina {
namespace {

using SourceFactory = std::unique_ptr<cSoundSTRM> (*)();

template <typename Source>
std::unique_ptr<cSoundSTRM> make() {
    return std::make_unique<Source>();
}

// The order in which the sources are tried for a file.
constexpr SourceFactory sourceFactories[] = {
    &make<DecWAV>,
    &make<DecCDA>,
};

} // namespace

std::vector<std::unique_ptr<cSoundSTRM>> makeSources() {
    std::vector<std::unique_ptr<cSoundSTRM>> sources;
    for (const SourceFactory factory : sourceFactories)
        sources.push_back(factory());
    return sources;
}

} // namespace corvina
