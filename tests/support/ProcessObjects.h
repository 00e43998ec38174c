#pragma once

// What this process holds, for tests that nothing is leaked by many rounds.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>
#include <windows.h>

namespace corvina::test {

// The system's own count of them is not there under Wine, so each possible handle is asked about.
// That takes its time: a test that opens few may ask about the lowest alone, which are given first.
[[nodiscard]] inline int countKernelHandles(std::intptr_t highest = 0x8000) {
    int count = 0;
    for (std::intptr_t value = 4; value < highest; value += 4) {
        DWORD flags = 0;
        if (::GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags))
            ++count;
    }
    return count;
}

[[nodiscard]] inline int countWindows() {
    int count = 0;
    for (HWND parent : {HWND{nullptr}, HWND_MESSAGE})
        for (HWND window = nullptr;
             (window = ::FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;) {
            DWORD process = 0;
            ::GetWindowThreadProcessId(window, &process);
            if (process == ::GetCurrentProcessId())
                ++count;
        }
    return count;
}

[[nodiscard]] inline int countGdiObjects() {
    return static_cast<int>(::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS));
}

[[nodiscard]] inline std::size_t countHeapBytes(HANDLE heap) {
    PROCESS_HEAP_ENTRY entry{};
    std::size_t bytes = 0;
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
            bytes += entry.cbData;
    ::HeapUnlock(heap);
    return bytes;
}

// That of the C runtime is one of its own.
[[nodiscard]] inline std::vector<HANDLE> processHeaps() {
    std::vector<HANDLE> heaps(64);
    const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    heaps.resize(std::min<std::size_t>(count, heaps.size()));
    return heaps;
}

[[nodiscard]] inline std::size_t countHeapBytes() {
    std::size_t bytes = 0;
    for (const HANDLE heap : processHeaps())
        bytes += countHeapBytes(heap);
    return bytes;
}

// Whether a heap keeps small blocks in groups. A group counts whole as one block in use, and a look
// over the heap does not notice what is written within it.
[[nodiscard]] inline bool groupsSmallBlocks(HANDLE heap) {
    constexpr ULONG lowFragmentation = 2;
    ULONG kind = 0;
    return ::HeapQueryInformation(heap, HeapCompatibilityInformation, &kind, sizeof kind,
                                  nullptr) &&
           kind == lowFragmentation;
}

[[nodiscard]] inline bool anyHeapGroupsSmallBlocks() {
    const std::vector<HANDLE> heaps = processHeaps();
    return std::any_of(heaps.begin(), heaps.end(), groupsSmallBlocks);
}

// Whether tools/check-heap started the program. Blocks are then freed late, and counted till then.
[[nodiscard]] inline bool heapsAreChecked() {
    return ::GetEnvironmentVariableW(L"CORVINA_HEAP_CHECKED", nullptr, 0) != 0;
}

[[nodiscard]] inline bool heapsAreWhole() {
    const std::vector<HANDLE> heaps = processHeaps();
    return std::all_of(heaps.begin(), heaps.end(),
                       [](HANDLE heap) { return ::HeapValidate(heap, 0, nullptr) != 0; });
}

} // namespace corvina::test
