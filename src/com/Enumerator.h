#pragma once

// A COM enumerator over a snapshot of items.
//
//   makeEnumerator<IEnumConnections, CONNECTDATA>(items, copy)
//
// copy(from, to) fills a caller's item, with references or memory that the caller then owns, and
// returns whether it could; the snapshot holds the items' own owners.

#include "com/Guard.h"
#include "com/Implements.h"

#include <algorithm>
#include <vector>

namespace corvina {

template <typename Interface, typename Item, typename Kept>
class Enumerator final : public Implements<Interface> {
public:
    using Copy = bool (*)(const Kept& from, Item& to) noexcept;

    Enumerator(std::vector<Kept> items, Copy copy, std::size_t position = 0)
        : items_(std::move(items)), copy_(copy), position_(position) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, Item* items, ULONG* fetched) override {
        if (fetched)
            *fetched = 0;
        if (!items || (!fetched && count != 1))
            return E_POINTER;
        ULONG done = 0;
        for (; done < count && position_ < items_.size(); ++done, ++position_)
            if (!copy_(items_[position_], items[done]))
                return E_OUTOFMEMORY;
            else if (fetched)
                *fetched = done + 1;
        return done == count ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const std::size_t step = std::min<std::size_t>(count, items_.size() - position_);
        position_ += step;
        return step == count ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE Reset() override {
        position_ = 0;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Clone(Interface** result) override {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        return guarded(__uuidof(Interface), L"",
                       [&] { *result = makeCom<Enumerator>(items_, copy_, position_).detach(); });
    }

private:
    std::vector<Kept> items_;
    Copy copy_;
    std::size_t position_;
};

// Stores a new enumerator, positioned at its first item, in result.
template <typename Interface, typename Item, typename Kept>
HRESULT giveEnumerator(std::vector<Kept> items, bool (*copy)(const Kept&, Item&) noexcept,
                       Interface** result) {
    *result = makeCom<Enumerator<Interface, Item, Kept>>(std::move(items), copy).detach();
    return S_OK;
}

} // namespace corvina
