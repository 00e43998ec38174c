#pragma once

// A disk whose every file holds the same bytes, in memory, for all of a source's platform calls.
// The system's own RIFF functions read it.

#include "platform/FileApi.h"
#include "platform/MmioApi.h"

#include <cstdint>
#include <span>

namespace corvina::fuzz {

// While one lives. One at a time.
class MemoryFiles {
public:
    explicit MemoryFiles(std::span<const std::uint8_t> content);
    MemoryFiles(const MemoryFiles&) = delete;
    MemoryFiles& operator=(const MemoryFiles&) = delete;
    // Everything must have been closed.
    ~MemoryFiles();

    [[nodiscard]] static const FileApi& files();
    [[nodiscard]] static const MmioApi& mmio();
};

} // namespace corvina::fuzz
