#include "com/ConnectionPoint.h"

#include "com/Enumerator.h"

#include <algorithm>

namespace corvina {

std::vector<ComPtr<IUnknown>> ConnectionPoint::listeners() const {
    std::vector<ComPtr<IUnknown>> result;
    result.reserve(connections_.size());
    for (const Connection& connection : connections_)
        result.push_back(connection.listener);
    return result;
}

void ConnectionPoint::disconnectAll() noexcept {
    // A listener's last release may call in again.
    std::vector<Connection> gone;
    gone.swap(connections_);
}

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    if (iid != IID_IUnknown && iid != IID_IConnectionPoint)
        return E_NOINTERFACE;
    *result = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* result) {
    return enterReturning(result, [&] { return iid_; });
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** result) {
    if (!result)
        return E_POINTER;
    return object().QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(result));
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (cookie)
        *cookie = 0;
    if (!sink || !cookie)
        return E_POINTER;
    return enter([&]() -> HRESULT {
        ComPtr<IUnknown> listener;
        if (FAILED(sink->QueryInterface(iid_, listener.putVoid())) &&
            (!events_ || FAILED(sink->QueryInterface(IID_IDispatch, listener.putVoid()))))
            return CONNECT_E_CANNOTCONNECT;
        if (!listener)
            return CONNECT_E_CANNOTCONNECT;
        connections_.push_back({++lastCookie_, std::move(listener)});
        *cookie = lastCookie_;
        return S_OK;
    });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    const auto found =
        std::find_if(connections_.begin(), connections_.end(),
                     [cookie](const Connection& each) { return each.cookie == cookie; });
    if (found == connections_.end())
        return CONNECT_E_NOCONNECTION;
    // Released after the list is in order again, for the listener's last release may call in.
    const Connection gone = std::move(*found);
    connections_.erase(found);
    return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** result) {
    return enterFilling(result, [&] {
        return giveEnumerator<IEnumConnections, CONNECTDATA, Connection>(
            connections_,
            [](const Connection& from, CONNECTDATA& to) noexcept {
                to = {ComPtr<IUnknown>(from.listener).detach(), from.cookie};
                return true;
            },
            result);
    });
}

} // namespace corvina
