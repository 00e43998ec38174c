#pragma once

// One face of a COM object, kept as an object of its own inside the whole.
//
//   class ViewPart final : public Part<IViewObjectEx> { ... };
//
// Identity and lifetime are the whole's: a part is a member of it, is never counted by itself and
// passes every query on.

#include "com/Implements.h"

namespace corvina {

template <typename First, typename... Rest>
class Part : public First, public Rest... {
public:
    explicit Part(IUnknown& whole) noexcept : whole_(whole) {}
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return whole_.QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return whole_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return whole_.Release(); }

    // The interface of that identifier, without a new reference; null where this part has none.
    [[nodiscard]] void* find(REFIID iid) noexcept {
        void* found = AnswersTo<First>::matches(iid) ? static_cast<First*>(this) : nullptr;
        ((found = !found && AnswersTo<Rest>::matches(iid) ? static_cast<Rest*>(this) : found), ...);
        return found;
    }

protected:
    ~Part() = default;

    [[nodiscard]] IUnknown& whole() const noexcept { return whole_; }

private:
    IUnknown& whole_;
};

} // namespace corvina
