#pragma once

// The outgoing interfaces of a control: its events, and changes of its properties.

#include "com/ConnectionPoint.h"
#include "com/Part.h"

#include <ocidl.h>
#include <olectl.h>

namespace corvina {

class ConnectionsPart final : public Part<IConnectionPointContainer> {
public:
    ConnectionsPart(IUnknown& whole, REFIID events) noexcept
        : Part(whole), events_(whole, events, true),
          propertyChanges_(whole, IID_IPropertyNotifySink, false) {}

    [[nodiscard]] ConnectionPoint& events() noexcept { return events_; }
    [[nodiscard]] ConnectionPoint& propertyChanges() noexcept { return propertyChanges_; }

    // Whether every listener allows the property to change.
    [[nodiscard]] bool mayChange(DISPID property) const;
    void tellChanged(DISPID property) const;

    void disconnectAll() noexcept;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** result) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** result) override;

private:
    ConnectionPoint events_;
    ConnectionPoint propertyChanges_;
};

} // namespace corvina
