// Replaces operator new for a whole test program.

#include "support/ExhaustedMemory.h"

#include <cstdlib>

namespace {

bool exhausted = false;
int leftBeforeFailure = 0; // the last of them fails; 0: none

bool fails() noexcept {
    return exhausted || (leftBeforeFailure > 0 && --leftBeforeFailure == 0);
}

void* allocate(std::size_t bytes) {
    return fails() ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
}

void release(void* block) noexcept {
    std::free(block);
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

#include "support/ReplacedNew.h"
