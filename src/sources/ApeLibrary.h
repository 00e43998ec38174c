#pragma once

// The functions of the Monkey's Audio decoder library MACDll.dll, which is loaded when the first of
// them is called. Without it a call raises "File not found" (53), without the function "Can't find
// DLL entry point" (453); the next call tries again.

#include "platform/LibraryApi.h"

#include <cstdint>

namespace corvina {

class ApeLibrary {
public:
    explicit ApeLibrary(const LibraryApi& api) noexcept : api_(api) {}

    // A decoder's handle; 0 if the file cannot be decoded.
    std::int32_t create(const char* ansiPath, std::int32_t& error);
    // The same for a name that the ANSI code page cannot spell, or a long one.
    std::int32_t createWide(const wchar_t* path, std::int32_t& error);
    std::int32_t getInfo(std::int32_t handle, std::int32_t field);
    // A block is one sample of every channel. A failure shows in the blocks that come.
    void getData(std::int32_t handle, void* buffer, std::int32_t blocks,
                 std::int32_t& blocksRetrieved);
    void seek(std::int32_t handle, std::int32_t block);
    void destroy(std::int32_t handle);

private:
    template <typename Function>
    [[nodiscard]] Function function(const char* name);

    const LibraryApi& api_;
    LibraryHandle module_;
};

} // namespace corvina
