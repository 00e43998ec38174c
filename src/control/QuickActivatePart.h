#pragma once

// A container's site and advises, and what the control says about itself, exchanged in one call.

#include "com/Part.h"
#include "control/ConnectionsPart.h"
#include "control/ObjectPart.h"
#include "control/ViewPart.h"

#include <ocidl.h>

namespace corvina {

class QuickActivatePart final : public Part<IQuickActivate> {
public:
    QuickActivatePart(IUnknown& outer, ObjectPart& object, ViewPart& view,
                      ConnectionsPart& connections) noexcept
        : Part(outer), object_(object), view_(view), connections_(connections) {}

    HRESULT STDMETHODCALLTYPE QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    HRESULT STDMETHODCALLTYPE SetContentExtent(LPSIZEL size) override;
    HRESULT STDMETHODCALLTYPE GetContentExtent(LPSIZEL size) override;

private:
    ObjectPart& object_;
    ViewPart& view_;
    ConnectionsPart& connections_;
};

} // namespace corvina
