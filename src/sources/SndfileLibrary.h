#pragma once

// The functions of libsndfile, one operation each, called by their exported names in the order of
// their C prototypes. A 64-bit count or offset goes as two words, low first; of a 64-bit result
// only the low word comes back.

#include "sources/SndfileFormat.h"
#include "stream/OptionalLibrary.h"

#include <cstdint>
#include <string>

namespace corvina {

class SndfileLibrary {
public:
    explicit SndfileLibrary(const LibraryApi& api);

    [[nodiscard]] bool loaded() const noexcept { return library_.ModuleHandle() != 0; }

    std::int32_t open(const std::string& ansiPath, std::int32_t mode, SndfileInfo& info);
    std::int32_t openWide(const std::wstring& path, std::int32_t mode, SndfileInfo& info);
    std::int32_t error(std::int32_t file);
    std::int32_t strerror(std::int32_t file);
    std::int32_t errorNumber(std::int32_t number);
    std::int32_t command(std::int32_t file, std::int32_t command, void* data, std::int32_t size);
    std::int32_t formatCheck(const SndfileInfo& info);
    std::int32_t seek(std::int32_t file, std::int64_t offset, std::int32_t whence);
    std::int32_t setString(std::int32_t file, std::int32_t type, const char* text);
    std::int32_t getString(std::int32_t file, std::int32_t type);

    // Bytes.
    std::int32_t readRaw(std::int32_t file, void* to, std::int64_t bytes);
    std::int32_t writeRaw(std::int32_t file, const void* from, std::int64_t bytes);

    // Frames: one item of every channel.
    std::int32_t readFramesShort(std::int32_t file, void* to, std::int64_t frames);
    std::int32_t writeFramesShort(std::int32_t file, const void* from, std::int64_t frames);
    std::int32_t readFramesInt(std::int32_t file, void* to, std::int64_t frames);
    std::int32_t writeFramesInt(std::int32_t file, const void* from, std::int64_t frames);
    std::int32_t readFramesFloat(std::int32_t file, void* to, std::int64_t frames);
    std::int32_t writeFramesFloat(std::int32_t file, const void* from, std::int64_t frames);
    std::int32_t readFramesDouble(std::int32_t file, void* to, std::int64_t frames);
    std::int32_t writeFramesDouble(std::int32_t file, const void* from, std::int64_t frames);

    // Items: single samples.
    std::int32_t readShort(std::int32_t file, void* to, std::int64_t items);
    // Calls the reading function. Nothing here ever writes, and a file that is open for reading
    // stays whole whoever calls this.
    std::int32_t writeShort(std::int32_t file, void* from, std::int64_t items);
    std::int32_t readInt(std::int32_t file, void* to, std::int64_t items);
    std::int32_t writeInt(std::int32_t file, const void* from, std::int64_t items);
    std::int32_t readFloat(std::int32_t file, void* to, std::int64_t items);
    std::int32_t writeFloat(std::int32_t file, const void* from, std::int64_t items);
    std::int32_t readDouble(std::int32_t file, void* to, std::int64_t items);
    std::int32_t writeDouble(std::int32_t file, const void* from, std::int64_t items);

    std::int32_t close(std::int32_t file);
    std::int32_t writeSync(std::int32_t file);

private:
    std::int32_t transfer(const char* name, std::int32_t file, const void* buffer,
                          std::int64_t count);

    OptionalLibrary library_;
};

} // namespace corvina
