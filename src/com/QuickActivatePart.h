#pragma once

// A container's site, advises and the control's answers exchanged in one call.

#include "com/Part.h"

#include <ocidl.h>

namespace corvina {

class OleControl;

class QuickActivatePart final : public Part<IQuickActivate> {
public:
    QuickActivatePart(IUnknown& whole, OleControl& control) noexcept
        : Part(whole), control_(control) {}

    HRESULT STDMETHODCALLTYPE QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    HRESULT STDMETHODCALLTYPE SetContentExtent(LPSIZEL size) override;
    HRESULT STDMETHODCALLTYPE GetContentExtent(LPSIZEL size) override;

private:
    OleControl& control_;
};

} // namespace corvina
