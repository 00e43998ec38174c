#pragma once

// How containers keep a control: in a stream, in a storage (as its stream "Contents") or in a
// property bag.

#include "com/Part.h"
#include "control/ControlChanges.h"
#include "control/PropertyValues.h"

#include <ocidl.h>

namespace corvina {

template <>
struct InterfaceIds<IPersistStreamInit> {
    static bool contain(REFIID iid) noexcept {
        return iid == IID_IPersistStreamInit || iid == IID_IPersist;
    }
};

class PersistPart final : public Part<IPersistStreamInit, IPersistStorage, IPersistPropertyBag> {
public:
    PersistPart(IUnknown& outer, REFCLSID clsid, PropertyValues& properties,
                ControlChanges& changes) noexcept
        : Part(outer), clsid_(clsid), properties_(properties), changes_(changes) {}

    // IPersist, for all three
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* result) override;
    // IPersistStreamInit and IPersistStorage
    HRESULT STDMETHODCALLTYPE IsDirty() override;
    // IPersistStreamInit and IPersistPropertyBag
    HRESULT STDMETHODCALLTYPE InitNew() override;

    HRESULT STDMETHODCALLTYPE Load(IStream* stream) override;
    HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) override;
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;

    HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Load(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) override;
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override;

    HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) override;
    HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clearDirty, BOOL everything) override;

private:
    template <typename Action>
    HRESULT loading(Action load);
    template <typename Action>
    HRESULT saving(bool clearDirty, Action save);

    const CLSID& clsid_;
    PropertyValues& properties_;
    ControlChanges& changes_;
};

} // namespace corvina
