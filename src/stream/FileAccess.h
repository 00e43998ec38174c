#pragma once

// The file functions that sources share: thin wrappers over the platform's, with 32-bit positions.
//
// A record is an open file and the path it was opened with; it closes the file at its own end. A
// path opens its own file and no other, also if the ANSI code page cannot spell it or if it is
// longer than 260 characters. The name of a device opens nothing.

#include "platform/FileApi.h"

#include <cstdint>
#include <string>

namespace corvina {

struct FileRecord {
    FileHandle handle;
    std::wstring path;

    [[nodiscard]] bool isOpen() const noexcept { return static_cast<bool>(handle); }
    // Harmless on a closed record.
    void close() noexcept {
        handle.reset();
        path.clear();
    }
};

enum class MoveMethod : DWORD {
    fromBeginning = FILE_BEGIN,
    fromCurrent = FILE_CURRENT,
    fromEnd = FILE_END
};

class FileAccess {
public:
    explicit FileAccess(const FileApi& files = systemFileApi) noexcept : files_(files) {}

    // A record of the path; closed if the platform refuses it.
    [[nodiscard]] FileRecord open(const std::wstring& path, DWORD desiredAccess, DWORD shareMode,
                                  DWORD creationDisposition) const;
    // For reading an existing file that others may read meanwhile.
    [[nodiscard]] FileRecord openForReading(const std::wstring& path) const;
    // Bytes read; 0 from a closed record; -1 if the platform fails or the count is negative.
    [[nodiscard]] std::int32_t read(const FileRecord& file, void* destination,
                                    std::int32_t bytes) const noexcept;
    // The new position from the beginning; -1 on failure.
    std::int32_t setPosition(const FileRecord& file, std::int32_t distance,
                             MoveMethod method) const noexcept;
    [[nodiscard]] std::int32_t position(const FileRecord& file) const noexcept;
    // Whether the file can be opened for reading at this moment.
    [[nodiscard]] bool exists(const std::wstring& path) const;

private:
    const FileApi& files_;
};

} // namespace corvina
