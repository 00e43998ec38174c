#pragma once

// The owner of a file's handle.

#include "platform/UniqueHandle.h"

#include <cstdint>
#include <windows.h>

namespace corvina::wine {

struct FileHandleTraits {
    using Handle = HANDLE;
    static inline const Handle none = INVALID_HANDLE_VALUE;
    static void close(Handle file) noexcept { ::CloseHandle(file); }
};
using FileHandle = UniqueHandle<FileHandleTraits>;

// Reads at a position of the file, wherever its pointer is; the number of bytes that were read,
// which is smaller at the end of the file and if it cannot be read.
[[nodiscard]] inline DWORD readAt(HANDLE file, std::uint64_t position, void* buffer, DWORD bytes) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    DWORD got = 0;
    return ::ReadFile(file, buffer, bytes, &got, &place) ? got : 0;
}

[[nodiscard]] inline std::uint64_t sizeOf(HANDLE file) {
    LARGE_INTEGER size{};
    return ::GetFileSizeEx(file, &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

} // namespace corvina::wine
