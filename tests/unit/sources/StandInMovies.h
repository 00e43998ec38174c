#pragma once

// A stand-in for the system's Media Foundation: every file is the movie that a test lays into it,
// whose reader writes down what it is asked for. Types and samples are the system's own.

#include "platform/LibraryApi.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include <mfapi.h>

namespace corvina::test {

// What one call of the reader for a sample does.
struct StandInRead {
    std::vector<std::uint8_t> bytes = {};
    LONGLONG time = 0;
    DWORD flags = 0;
    HRESULT result = S_OK;
    bool withoutSample = false;
    bool withoutBuffer = false; // in the sample
    bool cannotBeLocked = false;
    std::function<void()> before = {};
};

// A read of that many samples that count on from first.
[[nodiscard]] StandInRead samplesRead(std::size_t count, LONGLONG time = 0, std::int16_t first = 0);

struct StandInMovie {
    std::optional<UINT32> rate = 44100;
    std::optional<UINT32> channels = 2;
    std::optional<UINT32> bits = 16;
    std::optional<UINT32> speakers = {};
    PROPVARIANT duration{};
    std::vector<StandInRead> reads = {}; // behind them is the end
    bool repeatsLast = false;            // then the last of them comes again and again
    std::string failing = {};            // the name of a call that fails

    std::wstring openedPath = {};
    std::vector<std::pair<DWORD, BOOL>> selections = {}; // streams that were switched on or off
    GUID wantedKind{};
    GUID wantedCoding{};
    UINT32 wantedBits = 0;
    std::size_t calls = 0; // for a sample
    std::vector<LONGLONG> seeks = {};
    int starts = 0;    // that were not undone
    int libraries = 0; // that are loaded
    int readers = 0;   // that are alive
    int locks = 0;     // of buffers, that are not undone
    DWORD letGoBy = 0; // the thread on which the last reader ended

    void setDuration(LONGLONG time) {
        duration.vt = VT_UI8;
        duration.uhVal.QuadPart = static_cast<ULONGLONG>(time);
    }
};

// One for a test program, reset by each test.
extern StandInMovie movie;

extern const LibraryApi standInMovies;

} // namespace corvina::test
