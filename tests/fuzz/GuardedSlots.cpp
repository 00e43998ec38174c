// Replaces operator new for the fuzzing program: a block ends at a page that nobody may touch, so
// one byte too far faults at once. Slots are used again, last of all the one freed last, and a
// freed block is filled with a pattern; so a million blocks a second cost no call of the system.
// What does not fit comes from the heap, unguarded.

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <windows.h>

namespace {

constexpr std::size_t page = 4096;
constexpr std::size_t arenaPages = 131072; // 512 MB of addresses
constexpr std::size_t classes = 9;         // slots of 1 to 256 pages
constexpr std::size_t mostSlots = 8000;    // the system counts each as two mappings, of 65530
constexpr std::size_t kept = 16;           // slots freed last stay out of use
constexpr std::size_t mostBytes = 256u << 20;

struct Slot {
    std::uint32_t firstPage;
    std::uint32_t bytes; // of the block
    std::uint8_t sizeClass;
};

// A queue: the slot freed first is used first. Its links lie outside the slots.
struct FreeSlots {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::uint32_t count = 0;
};

std::uint8_t* arena = nullptr;
std::size_t slotCount = 0;
std::uint32_t nextPage = 1;                     // 0 means none
std::array<Slot, arenaPages> slotOfPage;        // of a slot's first and last page
std::array<std::uint32_t, arenaPages> nextFree; // by first page
std::array<FreeSlots, classes> freeSlots;
SRWLOCK lock = SRWLOCK_INIT;

class Locked {
public:
    Locked() { ::AcquireSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ::ReleaseSRWLockExclusive(&lock); }
};

std::uint8_t* addressOf(std::uint32_t pageNumber) {
    return arena + pageNumber * page;
}

// The first page of a slot; 0 if there is none left.
std::uint32_t newSlot(std::size_t pages) {
    if (!arena)
        arena = static_cast<std::uint8_t*>(
            ::VirtualAlloc(nullptr, arenaPages * page, MEM_RESERVE, PAGE_NOACCESS));
    if (!arena || slotCount == mostSlots || nextPage + pages + 1 > arenaPages)
        return 0;
    const std::uint32_t first = nextPage;
    if (!::VirtualAlloc(addressOf(first), pages * page, MEM_COMMIT, PAGE_READWRITE))
        return 0;
    ++slotCount;
    nextPage += static_cast<std::uint32_t>(pages) + 1;
    return first;
}

std::uint32_t takeFree(FreeSlots& free) {
    if (free.count <= kept)
        return 0;
    const std::uint32_t first = free.first;
    free.first = nextFree[first];
    --free.count;
    return first;
}

void* guardedBlock(std::size_t bytes) {
    const std::size_t pages = std::bit_ceil((bytes + page - 1) / page);
    const auto sizeClass = static_cast<std::size_t>(std::countr_zero(pages));
    if (sizeClass >= classes)
        return nullptr;
    const Locked locked;
    std::uint32_t first = takeFree(freeSlots[sizeClass]);
    if (first == 0)
        first = newSlot(pages);
    if (first == 0)
        return nullptr;
    const auto whole = static_cast<std::uint32_t>(pages);
    // The block may begin in any of the slot's pages: it ends where the slot does.
    std::uint8_t* const block = addressOf(first + whole) - bytes;
    const auto in = static_cast<std::size_t>(block - arena) / page;
    slotOfPage[in] = {first, static_cast<std::uint32_t>(bytes),
                      static_cast<std::uint8_t>(sizeClass)};
    return block;
}

void* allocate(std::size_t bytes) {
    bytes = bytes == 0 ? 1 : bytes;
    if (bytes > mostBytes)
        return nullptr;
    void* const block = guardedBlock(bytes);
    return block ? block : std::malloc(bytes);
}

void release(void* block) noexcept {
    if (!block)
        return;
    const std::size_t offset =
        reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(arena);
    if (!arena || offset >= arenaPages * page)
        return std::free(block);
    const Slot slot = slotOfPage[offset / page];
    const std::uint32_t pages = 1u << slot.sizeClass;
    if (addressOf(slot.firstPage + pages) - slot.bytes != block || slot.bytes == 0)
        __builtin_trap(); // freed twice, or never allocated
    slotOfPage[offset / page].bytes = 0;
    std::memset(block, 0xDD, slot.bytes);
    const Locked locked;
    FreeSlots& free = freeSlots[slot.sizeClass];
    if (free.count++ == 0)
        free.first = slot.firstPage;
    else
        nextFree[free.last] = slot.firstPage;
    free.last = slot.firstPage;
}

} // namespace

#include "support/ReplacedNew.h"
