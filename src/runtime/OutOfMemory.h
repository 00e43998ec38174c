#pragma once

// What happens when memory does not reach: bad_alloc, which the guard at each COM entry point turns
// into E_OUTOFMEMORY.

#include <new>

namespace corvina {

[[noreturn]] inline void throwOutOfMemory() {
    throw std::bad_alloc();
}

// pointer, which must not be null: const HGLOBAL memory = allocated(::GlobalAlloc(flags, bytes));
template <typename Pointer>
[[nodiscard]] Pointer allocated(Pointer pointer) {
    if (!pointer)
        throwOutOfMemory();
    return pointer;
}

// Runs body; false, and nothing thrown, if memory does not reach for it.
template <typename Body>
[[nodiscard]] bool memoryReaches(Body body) {
    try {
        body();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace corvina
