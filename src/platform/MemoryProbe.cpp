#include "platform/MemoryProbe.h"

#include <cstdint>
#include <limits>
#include <windows.h>

namespace corvina {
namespace {

constexpr DWORD writableKinds =
    PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
constexpr DWORD readableKinds = writableKinds | PAGE_READONLY | PAGE_EXECUTE_READ;

bool allPagesAre(DWORD kinds, const void* address, std::size_t bytes) noexcept {
    auto at = reinterpret_cast<std::uintptr_t>(address);
    if (bytes > std::numeric_limits<std::uintptr_t>::max() - at)
        return false;
    const std::uintptr_t end = at + bytes;
    while (at < end) {
        MEMORY_BASIC_INFORMATION region;
        if (::VirtualQuery(reinterpret_cast<const void*>(at), &region, sizeof region) == 0)
            return false;
        if (region.State != MEM_COMMIT || (region.Protect & PAGE_GUARD) != 0 ||
            (region.Protect & kinds) == 0)
            return false;
        const std::uintptr_t next =
            reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
        if (next <= at) // the region ends with the address space
            return true;
        at = next;
    }
    return true;
}

} // namespace

bool isReadable(const void* address, std::size_t bytes) noexcept {
    return allPagesAre(readableKinds, address, bytes);
}

bool isWritable(const void* address, std::size_t bytes) noexcept {
    return allPagesAre(writableKinds, address, bytes);
}

} // namespace corvina
