#pragma once

// Counting and interface query for a COM object that implements the given interfaces.
//
//   class Clock final : public Implements<ITimer, IPersist> { ... };
//   ComPtr<ITimer> timer = makeCom<Clock>();
//
// An object starts with one reference and is deleted by its last Release; while it is being
// destroyed it can be referenced and released again (events and window messages do that) without a
// second deletion. Every object counts as one user of the module.

#include "com/ComPtr.h"
#include "com/Module.h"

#include <atomic>
#include <new>
#include <utility>

namespace corvina {

// The identifiers under which an interface is found: its own alone, because C++ cannot list what an
// interface derives from. IUnknown is the object's matter. An interface that derives from others
// which hosts ask for (IViewObjectEx from IViewObject) has a specialisation that names them.
template <typename Interface>
struct InterfaceIds {
    static bool contain(REFIID iid) noexcept { return iid == __uuidof(Interface); }
};

template <typename First, typename... Rest>
class Implements : public First, public Rest... {
public:
    Implements(const Implements&) = delete;
    Implements& operator=(const Implements&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (!result)
            return E_POINTER;
        *result = iid == IID_IUnknown ? static_cast<IUnknown*>(static_cast<First*>(this))
                                      : findInterface(iid);
        if (!*result)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            references_ = destructionReference;
            beforeDestruction();
            delete this;
        }
        return left;
    }

protected:
    Implements() noexcept { thisModule().lock(); }
    virtual ~Implements() { thisModule().unlock(); }

    // The last reference is gone; the whole object is still there.
    virtual void beforeDestruction() noexcept {}

    // The interface of that identifier, without a new reference; null if there is none.
    virtual void* findInterface(REFIID iid) noexcept {
        void* found = InterfaceIds<First>::contain(iid) ? static_cast<First*>(this) : nullptr;
        ((found = !found && InterfaceIds<Rest>::contain(iid) ? static_cast<Rest*>(this) : found),
         ...);
        return found;
    }

private:
    static constexpr ULONG destructionReference = 0x40000000;
    std::atomic<ULONG> references_{1};
};

// A new object; the caller owns its first reference.
template <typename Class, typename... Arguments>
[[nodiscard]] ComPtr<Class> makeCom(Arguments&&... arguments) {
    return ComPtr<Class>::adopt(new Class(std::forward<Arguments>(arguments)...));
}

} // namespace corvina
