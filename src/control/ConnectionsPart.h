#pragma once

// The outgoing interfaces of a control: its events, and changes of its properties.

#include "com/ConnectionPoint.h"
#include "com/Part.h"

#include <ocidl.h>
#include <olectl.h>

namespace corvina {

class ConnectionsPart final : public Part<IConnectionPointContainer> {
public:
    ConnectionsPart(IUnknown& outer, REFIID events) noexcept
        : Part(outer), events_(outer, events, true),
          propertyChanges_(outer, IID_IPropertyNotifySink, false) {}

    [[nodiscard]] ConnectionPoint& events() noexcept { return events_; }
    [[nodiscard]] ConnectionPoint& propertyChanges() noexcept { return propertyChanges_; }

    // Whether every listener allows the property to change.
    [[nodiscard]] bool mayChange(DISPID property) const;
    void notifyChanged(DISPID property) const;

    void disconnectAll() noexcept;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** result) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** result) override;

private:
    ConnectionPoint events_;
    ConnectionPoint propertyChanges_;
};

} // namespace corvina
