// Replaces operator new for a whole test program: every block ends at a page that nobody may touch,
// and its pages become inaccessible when it is freed. So one byte read or written past the end, or
// after the end of its life, faults at once. A corvina_test takes it WITH guarded_new.
//
// A block costs 64 KB of address space, so such a program should hold few blocks at a time.

#include "support/GuardedNew.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <windows.h>

namespace {

constexpr std::size_t page = 4096;

std::atomic<std::size_t> largestBlock = 0;

std::size_t pagesFor(std::size_t bytes) {
    return (bytes + page - 1) / page * page;
}

// Sizes are multiples of what their types need, so the largest power of two in the size suffices
// and no byte is left between the block and the guard.
void* allocate(std::size_t bytes) {
    bytes = bytes == 0 ? 1 : bytes;
    if (bytes > largestBlock)
        largestBlock = bytes;
    if (bytes > SIZE_MAX - 3 * page)
        return nullptr;
    const std::size_t usable = pagesFor(bytes);
    auto* const base = static_cast<std::uint8_t*>(
        ::VirtualAlloc(nullptr, usable + page, MEM_RESERVE, PAGE_NOACCESS));
    if (!base || !::VirtualAlloc(base, usable, MEM_COMMIT, PAGE_READWRITE)) {
        if (base)
            ::VirtualFree(base, 0, MEM_RELEASE);
        return nullptr;
    }
    return base + usable - bytes;
}

// The address space of the last blocks stays reserved, so that nothing new appears under a pointer
// that should be dead.
void release(void* block) noexcept {
    if (!block)
        return;
    static void* quarantine[512];
    static std::size_t next = 0;
    static SRWLOCK lock = SRWLOCK_INIT;

    MEMORY_BASIC_INFORMATION region;
    ::VirtualQuery(block, &region, sizeof region);
    ::VirtualFree(region.AllocationBase, region.RegionSize, MEM_DECOMMIT);
    ::AcquireSRWLockExclusive(&lock);
    void* const oldest = quarantine[next];
    quarantine[next] = region.AllocationBase;
    next = (next + 1) % (sizeof quarantine / sizeof *quarantine);
    ::ReleaseSRWLockExclusive(&lock);
    if (oldest)
        ::VirtualFree(oldest, 0, MEM_RELEASE);
}

} // namespace

std::size_t corvina::test::takeLargestBlock() noexcept {
    return largestBlock.exchange(0);
}

#include "support/ReplacedNew.h"
