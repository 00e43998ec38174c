#pragma once

// Finds a chunk of a RIFF/WAVE file by its name. Each call opens and closes the file anew.

#include "platform/MmioApi.h"

#include <cstdint>
#include <string>

namespace corvina {

// Both 0 if there is no such chunk: no chunk of a RIFF file lies at offset 0.
struct RiffChunk {
    std::int32_t offset = 0; // of the first data byte in the file
    std::int32_t size = 0;   // in bytes, as the chunk declares it
};

// name: four characters, filled up with blanks.
[[nodiscard]] RiffChunk findWaveChunk(const std::wstring& path, const char* name,
                                      const MmioApi& mmio = systemMmioApi);

} // namespace corvina
