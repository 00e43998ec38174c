#include "control/ConnectionsPart.h"

#include "com/Enumerator.h"
#include "com/HandlerCall.h"

namespace corvina {

bool ConnectionsPart::mayChange(DISPID property) const {
    for (const ComPtr<IUnknown>& listener : propertyChanges_.listeners()) {
        HRESULT allowed = S_OK;
        callHandler([&] {
            allowed = static_cast<IPropertyNotifySink*>(listener.get())->OnRequestEdit(property);
        });
        if (allowed == S_FALSE)
            return false;
    }
    return true;
}

void ConnectionsPart::notifyChanged(DISPID property) const {
    for (const ComPtr<IUnknown>& listener : propertyChanges_.listeners())
        callHandler(
            [&] { static_cast<IPropertyNotifySink*>(listener.get())->OnChanged(property); });
}

void ConnectionsPart::disconnectAll() noexcept {
    events_.disconnectAll();
    propertyChanges_.disconnectAll();
}

HRESULT ConnectionsPart::EnumConnectionPoints(IEnumConnectionPoints** result) {
    return enterFilling(result, [&] {
        using Kept = ComPtr<IConnectionPoint>;
        return giveEnumerator<IEnumConnectionPoints, IConnectionPoint*, Kept>(
            {Kept(&events_), Kept(&propertyChanges_)},
            [](const Kept& from, IConnectionPoint*& to) noexcept {
                to = Kept(from).detach();
                return true;
            },
            result);
    });
}

HRESULT ConnectionsPart::FindConnectionPoint(REFIID iid, IConnectionPoint** result) {
    return enterFilling(result, [&]() -> HRESULT {
        for (ConnectionPoint* point : {&events_, &propertyChanges_})
            if (point->outgoing() == iid)
                return point->QueryInterface(IID_IConnectionPoint,
                                             reinterpret_cast<void**>(result));
        return CONNECT_E_NOCONNECTION;
    });
}

} // namespace corvina
