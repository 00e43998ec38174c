#include "fuzz/MemoryFiles.h"

#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvina::fuzz {
namespace {

struct OpenFile {
    bool open = false;
    std::int64_t position = 0;
};

std::span<const std::uint8_t> disk;
std::array<OpenFile, 64> table;

OpenFile* fileOf(HANDLE handle) {
    const auto index = reinterpret_cast<std::uintptr_t>(handle) - 1;
    return index < table.size() && table[index].open ? &table[index] : nullptr;
}

DWORD readAt(std::int64_t position, void* to, DWORD bytes) {
    if (position < 0)
        return 0;
    const std::int64_t left = static_cast<std::int64_t>(disk.size()) - position;
    const auto got = static_cast<DWORD>(std::clamp<std::int64_t>(left, 0, bytes));
    if (got > 0)
        std::memcpy(to, disk.data() + position, got);
    return got;
}

HANDLE openDisk() {
    const auto free =
        std::find_if(table.begin(), table.end(), [](const OpenFile& file) { return !file.open; });
    if (free == table.end())
        return INVALID_HANDLE_VALUE;
    *free = {true, 0};
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(free - table.begin()) + 1);
}

HANDLE WINAPI createFile(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    return openDisk();
}

HANDLE WINAPI createFileWide(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    return openDisk();
}

BOOL WINAPI closeHandle(HANDLE handle) {
    OpenFile* const file = fileOf(handle);
    require(file != nullptr, "only an open file is closed");
    file->open = false;
    return TRUE;
}

BOOL WINAPI readFile(HANDLE handle, LPVOID to, DWORD bytes, LPDWORD got, LPOVERLAPPED place) {
    OpenFile* const file = fileOf(handle);
    *got = 0;
    if (!file)
        return FALSE;
    if (place)
        file->position =
            static_cast<std::int64_t>(std::uint64_t{place->OffsetHigh} << 32 | place->Offset);
    *got = readAt(file->position, to, bytes);
    file->position += *got;
    return TRUE;
}

DWORD WINAPI setFilePointer(HANDLE handle, LONG distance, PLONG upper, DWORD method) {
    OpenFile* const file = fileOf(handle);
    if (!file)
        return INVALID_SET_FILE_POINTER;
    std::int64_t from = 0;
    if (method == FILE_CURRENT)
        from = file->position;
    else if (method == FILE_END)
        from = static_cast<std::int64_t>(disk.size());
    if (from + distance < 0)
        return INVALID_SET_FILE_POINTER;
    file->position = from + distance;
    if (upper)
        *upper = static_cast<LONG>(file->position >> 32);
    return static_cast<DWORD>(file->position);
}

// What the system's RIFF functions ask of a file.
LRESULT CALLBACK readProcedure(LPSTR info, UINT message, LPARAM first, LPARAM second) {
    MMIOINFO& file = *reinterpret_cast<MMIOINFO*>(info);
    switch (message) {
    case MMIOM_OPEN:
    case MMIOM_CLOSE:
        return MMSYSERR_NOERROR;
    case MMIOM_READ: {
        const DWORD got = readAt(file.lDiskOffset, reinterpret_cast<void*>(first),
                                 static_cast<DWORD>(std::max<LPARAM>(0, second)));
        file.lDiskOffset += static_cast<LONG>(got);
        return static_cast<LRESULT>(got);
    }
    case MMIOM_SEEK: {
        LONG from = 0;
        if (second == SEEK_CUR)
            from = file.lDiskOffset;
        else if (second == SEEK_END)
            from = static_cast<LONG>(disk.size());
        const std::int64_t to = std::int64_t{from} + first;
        if (to < 0 || to > MAXLONG)
            return -1;
        file.lDiskOffset = static_cast<LONG>(to);
        return file.lDiskOffset;
    }
    default:
        return 0;
    }
}

int openRiffFiles = 0;

HMMIO WINAPI openRiff(LPSTR, LPMMIOINFO, DWORD flags) {
    MMIOINFO info{};
    info.pIOProc = &readProcedure;
    const HMMIO handle = ::mmioOpenA(nullptr, &info, flags);
    openRiffFiles += handle != nullptr;
    return handle;
}

MMRESULT WINAPI closeRiff(HMMIO handle, UINT flags) {
    const MMRESULT result = ::mmioClose(handle, flags);
    openRiffFiles -= result == MMSYSERR_NOERROR;
    return result;
}

} // namespace

MemoryFiles::MemoryFiles(std::span<const std::uint8_t> content) {
    disk = content;
    table = {};
    openRiffFiles = 0;
}

MemoryFiles::~MemoryFiles() {
    for (const OpenFile& file : table)
        require(!file.open, "every file is closed in the end");
    require(openRiffFiles == 0, "every RIFF file is closed in the end");
}

const FileApi& MemoryFiles::files() {
    static const FileApi api = [] {
        FileApi made;
        made.createFile = &createFile;
        made.createFileWide = &createFileWide;
        made.closeHandle = &closeHandle;
        made.readFile = &readFile;
        made.setFilePointer = &setFilePointer;
        return made;
    }();
    return api;
}

const MmioApi& MemoryFiles::mmio() {
    static const MmioApi api = [] {
        MmioApi made;
        made.open = &openRiff;
        made.close = &closeRiff;
        return made;
    }();
    return api;
}

} // namespace corvina::fuzz
