// Replaces operator new for the fuzzing program: a block ends at a page that nobody may touch, so
// one byte too far faults at once. Slots are used again, last of all the one freed last, and a
// freed block is filled with a pattern; so a million blocks a second cost no call of the system.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <windows.h>

namespace {

constexpr std::size_t page = 4096;
constexpr std::size_t largestClass = 9; // 256 pages
constexpr std::size_t mostFree = 4096;  // slots of a class
constexpr std::size_t mostBytes = 256u << 20;
constexpr std::size_t filledBytes = 64 * 1024;
// Each costs 64 KB of address space; what is more comes from the heap, unguarded.
constexpr LONG mostGuarded = 12000;

struct Head {
    std::uint32_t sizeClass; // largestClass for a block of its own
    std::uint32_t bytes;
    void* block;
};

struct FreeSlots {
    std::array<std::uint8_t*, mostFree> slots;
    std::size_t first = 0;
    std::size_t count = 0;
};

std::array<FreeSlots, largestClass> freeSlots;
SRWLOCK lock = SRWLOCK_INIT;
LONG guarded = 0;

class Locked {
public:
    Locked() { ::AcquireSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ::ReleaseSRWLockExclusive(&lock); }
};

constexpr std::size_t usableBytes(std::size_t sizeClass) {
    return page << sizeClass;
}

std::uint8_t* newPages(std::size_t usable) {
    auto* const base = static_cast<std::uint8_t*>(
        ::VirtualAlloc(nullptr, usable + page, MEM_RESERVE, PAGE_NOACCESS));
    if (!base || !::VirtualAlloc(base, usable, MEM_COMMIT, PAGE_READWRITE))
        return nullptr;
    return base;
}

void* placed(std::uint8_t* base, std::size_t usable, Head head) {
    head.block = base + usable - head.bytes;
    std::memcpy(base, &head, sizeof head);
    return head.block;
}

// The sixteen slots that were freed last stay out of use.
std::uint8_t* reused(FreeSlots& free) {
    if (free.count <= 16)
        return nullptr;
    std::uint8_t* const base = free.slots[free.first];
    free.first = (free.first + 1) % mostFree;
    --free.count;
    return base;
}

void* allocate(std::size_t bytes) {
    bytes = bytes == 0 ? 1 : bytes;
    if (bytes > mostBytes)
        return nullptr;
    if (guarded >= mostGuarded)
        return std::malloc(bytes);
    std::size_t sizeClass = 0;
    while (sizeClass < largestClass && bytes + sizeof(Head) > usableBytes(sizeClass))
        ++sizeClass;
    const Head head{static_cast<std::uint32_t>(sizeClass), static_cast<std::uint32_t>(bytes),
                    nullptr};
    const std::size_t usable = sizeClass < largestClass
                                   ? usableBytes(sizeClass)
                                   : (bytes + sizeof(Head) + page - 1) / page * page;
    std::uint8_t* base = nullptr;
    if (sizeClass < largestClass) {
        const Locked locked;
        base = reused(freeSlots[sizeClass]);
    }
    if (!base)
        base = newPages(usable);
    if (!base)
        return nullptr;
    ::InterlockedIncrement(&guarded);
    return placed(base, usable, head);
}

// The head is at the start of the pages whose last byte is the block's last byte.
std::uint8_t* baseOf(void* block) {
    MEMORY_BASIC_INFORMATION region;
    ::VirtualQuery(block, &region, sizeof region);
    return static_cast<std::uint8_t*>(region.AllocationBase);
}

void release(void* block) noexcept {
    if (!block)
        return;
    // Nearly all blocks lie in one page with their head.
    auto* base =
        reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(block) & ~(page - 1));
    Head head;
    std::memcpy(&head, base, sizeof head);
    if (head.block != block) {
        base = baseOf(block);
        std::memcpy(&head, base, sizeof head);
        if (head.block != block)
            return std::free(block);
    }
    ::InterlockedDecrement(&guarded);
    if (head.sizeClass >= largestClass) {
        ::VirtualFree(base, 0, MEM_RELEASE);
        return;
    }
    std::memset(block, 0xDD, head.bytes < filledBytes ? head.bytes : filledBytes);
    const Locked locked;
    FreeSlots& free = freeSlots[head.sizeClass];
    if (free.count < mostFree)
        free.slots[(free.first + free.count++) % mostFree] = base;
    else
        ::VirtualFree(base, 0, MEM_RELEASE);
}

} // namespace

void* operator new(std::size_t bytes) {
    if (void* const block = allocate(bytes))
        return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) {
    return operator new(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}
