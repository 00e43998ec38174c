#pragma once

// One group of interfaces of a COM object, kept as an object of its own inside it.
//
//   class ViewPart final : public Part<IViewObjectEx> { ... };
//
// Identity and lifetime are the outer object's: a part is a member of it, is never counted by
// itself and passes every query on.

#include "com/EntryPoints.h"
#include "com/Implements.h"

namespace corvina {

template <typename First, typename... Rest>
class Part : public First, public Rest..., protected EntryPoints {
public:
    explicit Part(IUnknown& outer) noexcept : EntryPoints(outer, __uuidof(First), L"") {}
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return object().QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return object().AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return object().Release(); }

    // The interface of that identifier, without a new reference; null if this part has none.
    [[nodiscard]] void* find(REFIID iid) noexcept {
        void* found = InterfaceIds<First>::contain(iid) ? static_cast<First*>(this) : nullptr;
        ((found = !found && InterfaceIds<Rest>::contain(iid) ? static_cast<Rest*>(this) : found),
         ...);
        return found;
    }

protected:
    ~Part() = default;
};

} // namespace corvina
