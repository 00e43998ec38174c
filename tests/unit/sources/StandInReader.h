#pragma once

// A stand-in for the system's Windows Media library: a reader that plays what a test lays into it,
// returns from each call what the test wants, and writes down every call with its arguments.

#include "com/Implements.h"
#include "platform/LibraryApi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include <mmreg.h>
#include <wmsdk.h>

namespace corvina::test {

inline constexpr GUID mediaAudio = {
    0x73647561, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID mediaVideo = {
    0x73646976, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID mediaPcm = {
    0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

struct StandInFormat {
    GUID major = mediaAudio;
    GUID subtype = mediaPcm;
    std::vector<std::uint8_t> block; // the wave format as stored
    bool withoutBlock = false;       // the pointer to the block is null
    DWORD typeBytes = 0;             // the size that is reported, if not the true one
};

// 44100 Hz stereo of that width.
[[nodiscard]] StandInFormat pcmFormat(WORD bits);

struct StandInAttribute {
    std::wstring name;
    WMT_ATTR_DATATYPE type = WMT_TYPE_STRING;
    std::vector<std::uint8_t> value;
    bool withoutTerminator = false;   // the name's length does not count one
    DWORD reportedBytes = 0xFFFFFFFF; // the first call reports this instead of the true length
};

[[nodiscard]] StandInAttribute textAttribute(std::wstring name, const std::wstring& value);

template <typename Number>
[[nodiscard]] StandInAttribute numberAttribute(std::wstring name, WMT_ATTR_DATATYPE type,
                                               Number value) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&value);
    return {std::move(name), type, {bytes, bytes + sizeof value}};
}

struct StandInBlock {
    QWORD time = 0; // units of 100 nanoseconds
    std::vector<std::uint8_t> bytes;
    bool withoutData = false;         // the pointer to the bytes is null
    DWORD reportedBytes = 0xFFFFFFFF; // the length that is reported, if not the true one
};

// What the library holds and what it returns; one for a test program, reset by each test.
struct StandInLibrary {
    bool missing = false;
    bool withoutExport = false;
    HRESULT createResult = S_OK;

    DWORD outputs = 1;
    std::map<DWORD, DWORD> formatCounts;                      // by output
    std::map<std::pair<DWORD, DWORD>, StandInFormat> formats; // by output and format
    std::vector<StandInAttribute> attributes;
    WORD attributeCount = 0; // if it is not the number of attributes: they then repeat
    std::vector<StandInBlock> blocks;
    HRESULT afterLastBlock = static_cast<HRESULT>(0xC00D0BCF);
    std::map<std::string, HRESULT> results; // by function, if not the normal one
    bool withoutHeader = false;             // the reader does not know the header's interface

    bool noting = true; // calls are written down
    std::vector<std::string> calls;
    std::size_t next = 0; // the block that is fetched next
    bool fileOpen = false;
    int objects = 0;     // that are alive: readers, properties, buffers
    int libraryUses = 0; // loaded and not freed

    // The calls so far, which are then forgotten.
    [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }
};

extern StandInLibrary library;

// Loads the stand-in under any name.
extern const LibraryApi standInApi;

// A file with one 16-bit output, a duration and these blocks.
void layFile(QWORD duration, std::vector<StandInBlock> blocks);

} // namespace corvina::test
