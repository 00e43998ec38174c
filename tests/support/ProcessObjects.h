#pragma once

// What this process holds, for tests that nothing is leaked by many rounds.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <windows.h>

namespace corvina::test {

// The system's own count of them is not there under Wine, so each possible handle is asked about.
[[nodiscard]] inline int countKernelHandles() {
    constexpr std::intptr_t highest = 0x8000;
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

// In all heaps: that of the C runtime is one of its own.
[[nodiscard]] inline std::size_t countHeapBytes() {
    HANDLE heaps[64];
    const DWORD count =
        std::min<DWORD>(::GetProcessHeaps(ARRAYSIZE(heaps), heaps), ARRAYSIZE(heaps));
    std::size_t bytes = 0;
    for (DWORD index = 0; index < count; ++index)
        bytes += countHeapBytes(heaps[index]);
    return bytes;
}

} // namespace corvina::test
