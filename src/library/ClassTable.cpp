#include "library/ClassTable.h"

#include "graph/cAudioGraph.h"
#include "library/Resources.h"
#include "player/cPlayer.h"
#include "subclass/GSubclass.h"

#include "Corvina.h"

namespace corvina {
namespace {

template <typename Class>
ClassEntry control(const ControlClass& controlClass, int toolboxBitmap) {
    return {.clsid = controlClass.clsid,
            .progId = controlClass.progId,
            .description = controlClass.description,
            .create = [](IUnknown* outer) -> IUnknown* {
                return &makeCom<Class>(outer).detach()->inner();
            },
            .control = &controlClass,
            .toolboxBitmap = toolboxBitmap};
}

IUnknown* createSubclassing(IUnknown*) {
    return static_cast<_GSubclass*>(makeCom<GSubclass>().detach());
}

} // namespace

std::span<const ClassEntry> classTable() noexcept {
    static const ClassEntry classes[] = {
        control<cPlayer>(playerClass, CORVINA_BITMAP_PLAYER),
        control<cAudioGraph>(audioGraphClass, CORVINA_BITMAP_GRAPH),
        {.clsid = CLSID_GSubclass,
         .progId = L"Corvina.GSubclass",
         .description = L"Corvina window subclassing",
         .create = &createSubclassing},
    };
    return classes;
}

} // namespace corvina
