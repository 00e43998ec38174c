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

template <typename Interface, typename Class>
ClassEntry control(const ControlClass& controlClass, int toolboxBitmap) {
    return {.clsid = controlClass.clsid,
            .progId = controlClass.progId,
            .description = controlClass.description,
            .create = &create<Interface, Class>,
            .toolboxBitmap = toolboxBitmap};
}

} // namespace

std::span<const ClassEntry> classTable() noexcept {
    static const ClassEntry classes[] = {
        control<_cPlayer, cPlayer>(playerClass, CORVINA_BITMAP_PLAYER),
        control<_cAudioGraph, cAudioGraph>(audioGraphClass, CORVINA_BITMAP_GRAPH),
        {.clsid = CLSID_GSubclass,
         .progId = L"Corvina.GSubclass",
         .description = L"Corvina window subclassing",
         .create = &create<_GSubclass, GSubclass>},
    };
    return classes;
}

} // namespace corvina
