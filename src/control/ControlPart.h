#pragma once

// What makes an embedded object a control: keys, ambient properties and frozen events.

#include "com/EventSource.h"
#include "com/Part.h"
#include "control/ControlChanges.h"
#include "control/InPlacePart.h"

#include <ocidl.h>

namespace corvina {

class ControlPart final : public Part<IOleControl> {
public:
    ControlPart(IUnknown& outer, InPlacePart& inPlace, EventSource& events,
                ControlChanges& changes) noexcept
        : Part(outer), inPlace_(inPlace), events_(events), changes_(changes) {}

    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG* message) override;
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID property) override;
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) override;

private:
    InPlacePart& inPlace_;
    EventSource& events_;
    ControlChanges& changes_;
};

} // namespace corvina
