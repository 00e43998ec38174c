#pragma once

// One outgoing interface of a COM object: who listens to it.
//
// Listeners may come and go while they are being called: whoever calls them walks a snapshot. The
// point has an identity of its own, as hosts expect, and lives as long as the object.

#include "com/ComPtr.h"
#include "com/EntryPoints.h"
#include "com/Implements.h"

#include <ocidl.h>
#include <olectl.h>
#include <vector>

namespace corvina {

class ConnectionPoint final : public IConnectionPoint, private EntryPoints {
public:
    // iid: the outgoing interface. events: it is an event interface, so that a listener which has
    // nothing but IDispatch is accepted too.
    ConnectionPoint(IUnknown& outer, REFIID iid, bool events) noexcept
        : EntryPoints(outer, IID_IConnectionPoint, L""), iid_(iid), events_(events) {}

    [[nodiscard]] REFIID outgoing() const noexcept { return iid_; }

    // The listeners of this moment; each is the outgoing interface (or IDispatch for events).
    [[nodiscard]] std::vector<ComPtr<IUnknown>> listeners() const;
    void disconnectAll() noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return object().AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return object().Release(); }

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* result) override;
    HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** result) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** result) override;

private:
    struct Connection {
        DWORD cookie;
        ComPtr<IUnknown> listener;
    };

    const IID& iid_;
    bool events_;
    DWORD lastCookie_ = 0;
    std::vector<Connection> connections_;
};

} // namespace corvina
