#pragma once

// What to do with a null pointer or handle that means "no memory": throw std::bad_alloc, which
// guarded() turns into E_OUTOFMEMORY at the boundary to the host.
//
//   const HGLOBAL memory = allocated(::GlobalAlloc(GMEM_MOVEABLE, bytes));

#include <new>

namespace corvina {

template <typename Pointer>
[[nodiscard]] Pointer allocated(Pointer pointer) {
    if (!pointer)
        throw std::bad_alloc();
    return pointer;
}

} // namespace corvina
