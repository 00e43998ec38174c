#include "library/ClassTable.h"

#include "graph/cAudioGraph.h"
#include "library/Resources.h"
#include "player/cPlayer.h"
#include "subclass/GSubclass.h"

#include "Corvina.h"

namespace corvina {
namespace {

template <typename Interface, typename Class>
IUnknown* create() {
    return static_cast<Interface*>(makeCom<Class>().detach());
}

const ClassEntry classes[] = {
    {CLSID_cPlayer, L"Corvina.cPlayer", L"Corvina audio player", &create<_cPlayer, cPlayer>,
     CORVINA_BITMAP_PLAYER},
    {CLSID_cAudioGraph, L"Corvina.cAudioGraph", L"Corvina audio graph",
     &create<_cAudioGraph, cAudioGraph>, CORVINA_BITMAP_GRAPH},
    {CLSID_GSubclass, L"Corvina.GSubclass", L"Corvina window subclassing",
     &create<_GSubclass, GSubclass>, 0},
};

} // namespace

std::span<const ClassEntry> classTable() noexcept {
    return classes;
}

} // namespace corvina
