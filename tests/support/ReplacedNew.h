#pragma once

// Replaces operator new and operator delete for the whole program. The one file that includes this
// defines before it, in an unnamed namespace:
//
//   void* allocate(std::size_t bytes)       null: there is no memory
//   void release(void* block) noexcept      block may be null
//
// The other forms, for arrays and without exceptions, are the standard library's own. They call
// these.

#include <cstddef>
#include <new>

void* operator new(std::size_t bytes) {
    if (void* const block = allocate(bytes))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    release(block);
}

void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
