#pragma once

// The functions of libsndfile, one operation each, called by their exported names in the order of
// their C prototypes. A 64-bit count or offset goes as two words, low first; of a 64-bit result
// only the low word comes back.

#include "stream/cDLL.h"

#include <cstdint>
#include <string>

namespace corvina {

// The library's SF_INFO.
struct SndfileInfo {
    std::uint32_t framesLow;
    std::int32_t framesHigh;
    std::int32_t sampleRate;
    std::int32_t channels;
    std::int32_t format;
    std::int32_t sections;
    std::int32_t seekable;
    std::int32_t padding; // to the alignment of its 64-bit member
};
static_assert(sizeof(SndfileInfo) == 32);

class SndfileLibrary {
public:
    explicit SndfileLibrary(const LibraryApi& api);
    ~SndfileLibrary();

    [[nodiscard]] bool loaded() const noexcept { return library_.ModuleHandle() != 0; }

    std::int32_t open(const std::string& ansiPath, std::int32_t mode, SndfileInfo& info) {
        return library_.CallFunc("sf_open", ansiPath.c_str(), mode, &info);
    }
    std::int32_t openWide(const std::wstring& path, std::int32_t mode, SndfileInfo& info) {
        return library_.CallFunc("sf_wchar_open", path.c_str(), mode, &info);
    }
    std::int32_t error(std::int32_t file) { return library_.CallFunc("sf_error", file); }
    std::int32_t strerror(std::int32_t file) { return library_.CallFunc("sf_strerror", file); }
    std::int32_t errorNumber(std::int32_t number) {
        return library_.CallFunc("sf_error_number", number);
    }
    std::int32_t command(std::int32_t file, std::int32_t command, void* data, std::int32_t size) {
        return library_.CallFunc("sf_command", file, command, data, size);
    }
    std::int32_t formatCheck(const SndfileInfo& info) {
        return library_.CallFunc("sf_format_check", &info);
    }
    std::int32_t seek(std::int32_t file, std::int64_t offset, std::int32_t whence) {
        return library_.CallFunc("sf_seek", file, low(offset), high(offset), whence);
    }
    std::int32_t setString(std::int32_t file, std::int32_t type, const char* text) {
        return library_.CallFunc("sf_set_string", file, type, text);
    }
    std::int32_t getString(std::int32_t file, std::int32_t type) {
        return library_.CallFunc("sf_get_string", file, type);
    }

    // Bytes.
    std::int32_t readRaw(std::int32_t file, void* to, std::int64_t bytes) {
        return transfer("sf_read_raw", file, to, bytes);
    }
    std::int32_t writeRaw(std::int32_t file, const void* from, std::int64_t bytes) {
        return transfer("sf_write_raw", file, from, bytes);
    }

    // Frames: one item of every channel.
    std::int32_t readFramesShort(std::int32_t file, void* to, std::int64_t frames) {
        return transfer("sf_readf_short", file, to, frames);
    }
    std::int32_t writeFramesShort(std::int32_t file, const void* from, std::int64_t frames) {
        return transfer("sf_writef_short", file, from, frames);
    }
    std::int32_t readFramesInt(std::int32_t file, void* to, std::int64_t frames) {
        return transfer("sf_readf_int", file, to, frames);
    }
    std::int32_t writeFramesInt(std::int32_t file, const void* from, std::int64_t frames) {
        return transfer("sf_writef_int", file, from, frames);
    }
    std::int32_t readFramesFloat(std::int32_t file, void* to, std::int64_t frames) {
        return transfer("sf_readf_float", file, to, frames);
    }
    std::int32_t writeFramesFloat(std::int32_t file, const void* from, std::int64_t frames) {
        return transfer("sf_writef_float", file, from, frames);
    }
    std::int32_t readFramesDouble(std::int32_t file, void* to, std::int64_t frames) {
        return transfer("sf_readf_double", file, to, frames);
    }
    std::int32_t writeFramesDouble(std::int32_t file, const void* from, std::int64_t frames) {
        return transfer("sf_writef_double", file, from, frames);
    }

    // Items: single samples.
    std::int32_t readShort(std::int32_t file, void* to, std::int64_t items) {
        return transfer("sf_read_short", file, to, items);
    }
    // Calls the reading function. Nothing here ever writes, and a file that is open for reading
    // stays whole whoever calls this.
    std::int32_t writeShort(std::int32_t file, void* from, std::int64_t items) {
        return transfer("sf_read_short", file, from, items);
    }
    std::int32_t readInt(std::int32_t file, void* to, std::int64_t items) {
        return transfer("sf_read_int", file, to, items);
    }
    std::int32_t writeInt(std::int32_t file, const void* from, std::int64_t items) {
        return transfer("sf_write_int", file, from, items);
    }
    std::int32_t readFloat(std::int32_t file, void* to, std::int64_t items) {
        return transfer("sf_read_float", file, to, items);
    }
    std::int32_t writeFloat(std::int32_t file, const void* from, std::int64_t items) {
        return transfer("sf_write_float", file, from, items);
    }
    std::int32_t readDouble(std::int32_t file, void* to, std::int64_t items) {
        return transfer("sf_read_double", file, to, items);
    }
    std::int32_t writeDouble(std::int32_t file, const void* from, std::int64_t items) {
        return transfer("sf_write_double", file, from, items);
    }

    std::int32_t close(std::int32_t file) { return library_.CallFunc("sf_close", file); }
    std::int32_t writeSync(std::int32_t file) { return library_.CallFunc("sf_write_sync", file); }

private:
    [[nodiscard]] static std::int32_t low(std::int64_t value) noexcept {
        return static_cast<std::int32_t>(value);
    }
    [[nodiscard]] static std::int32_t high(std::int64_t value) noexcept {
        return static_cast<std::int32_t>(value >> 32);
    }
    std::int32_t transfer(const char* name, std::int32_t file, const void* buffer,
                          std::int64_t count) {
        return library_.CallFunc(name, file, buffer, low(count), high(count));
    }

    cDLL library_;
};

} // namespace corvina
