// Replaces operator new for a whole test program.

#include "support/ExhaustedMemory.h"

#include <cstdlib>
#include <new>

namespace {

bool exhausted = false;
int leftBeforeFailure = 0; // the last of them fails; 0: none

bool fails() noexcept {
    return exhausted || (leftBeforeFailure > 0 && --leftBeforeFailure == 0);
}

} // namespace

namespace corvina::test {

ExhaustedMemory::ExhaustedMemory() noexcept {
    exhausted = true;
}

ExhaustedMemory::~ExhaustedMemory() {
    exhausted = false;
}

FailingAllocation::FailingAllocation(int nth) noexcept {
    leftBeforeFailure = nth;
}

FailingAllocation::~FailingAllocation() {
    leftBeforeFailure = 0;
}

bool FailingAllocation::struck() const noexcept {
    return leftBeforeFailure == 0;
}

} // namespace corvina::test

// The other forms of the language's library come to these.
void* operator new(std::size_t bytes) {
    void* const block = fails() ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
