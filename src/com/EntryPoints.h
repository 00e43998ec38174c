#pragma once

// How the entry points of a COM object begin. Every one of them keeps the object alive until the
// call has returned, even if a handler releases the host's last reference meanwhile, and lets no
// exception into the host.
//
//   HRESULT ViewPart::GetExtent(DWORD aspect, ..., SIZEL* size) {
//       return enterFilling(size, [&] { return extent_.get(aspect, *size); });
//   }

#include "com/ComPtr.h"
#include "com/Guard.h"

#include <utility>

namespace corvina {

class EntryPoints {
protected:
    // object: whom to keep alive. iid and source: what error information names as its origin.
    EntryPoints(IUnknown& object, REFIID iid, const wchar_t* source) noexcept
        : object_(object), iid_(iid), source_(source) {}
    ~EntryPoints() = default;

    [[nodiscard]] IUnknown& object() const noexcept { return object_; }

    // body returns an HRESULT or nothing (S_OK).
    template <typename Body>
    [[nodiscard]] HRESULT enter(Body&& body) const noexcept {
        const ComPtr<IUnknown> alive(&object_);
        return guarded(iid_, source_, std::forward<Body>(body));
    }

    // For an entry point with a result: E_POINTER without a place for it; otherwise the result is
    // cleared and body fills it, returning an HRESULT or nothing.
    template <typename Result, typename Body>
    [[nodiscard]] HRESULT enterFilling(Result* result, Body&& body) const noexcept {
        if (!result)
            return E_POINTER;
        *result = Result{};
        return enter(std::forward<Body>(body));
    }

    // The same if body returns the result itself.
    template <typename Result, typename Body>
    [[nodiscard]] HRESULT enterReturning(Result* result, Body&& body) const noexcept {
        return enterFilling(result, [&] { *result = static_cast<Result>(body()); });
    }

private:
    IUnknown& object_;
    const IID& iid_;
    const wchar_t* source_;
};

} // namespace corvina
