#pragma once

// DecSND over a stand-in for libsndfile that writes every call down.

#include "sources/DecSND.h"
#include "support/StandIns.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace corvina::test {

inline constexpr std::int32_t handle = 0x5F11E;

// What the stand-in returns.
struct SndResults {
    std::int32_t open = handle;
    SndfileInfo info{1000, 0, 1000, 2, 0x030002, 1, 1, 0};
    std::vector<float> floats;  // what a floating-point file holds
    std::int32_t end = 1000;    // sf_seek to the end
    std::int32_t current = 0;   // sf_seek by 0
    std::int32_t readItems = 0; // sf_read_short
    bool seeks = true;          // or any sf_seek is refused
    std::int32_t counting = 0;  // items from 1 on that sf_read_short writes, if it is not 0
};

class SndCalls : public testing::Test {
protected:
    SndCalls() {
        results = {};
        counted = 0;
        libraries.add("libsndfile.dll", usual());
    }

    // The functions that every use calls.
    static StandIns::Exports usual() {
        return {{"sf_open", standIn(&sfOpen)},
                {"sf_seek", standIn(&sfSeek)},
                {"sf_read_short", standIn(&sfReadShort)},
                {"sf_close", standIn(&sfClose)}};
    }
    // Adds one that only some files need.
    template <typename Function>
    void addExport(const char* name, Function* function) {
        StandIns::Exports exports = usual();
        exports[name] = standIn(function);
        libraries.add("libsndfile.dll", exports);
    }

    DecSND& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(L"a.au"), 0);
        libraries.calls.clear();
        return *source_;
    }

    static std::int32_t seek(DecSND& source, std::int32_t value, std::int32_t mode) {
        return source.SeekTo(value, mode);
    }

    static std::int32_t __cdecl sfWcharOpen(const wchar_t* path, std::int32_t mode,
                                            SndfileInfo* info) {
        openedName = path;
        StandIns::record("sf_wchar_open", {mode});
        if (results.open != 0)
            *info = results.info;
        return results.open;
    }

    static std::int32_t __cdecl sfReadFloat(std::int32_t file, float* buffer, std::int32_t low,
                                            std::int32_t high) {
        StandIns::record("sf_read_float", {file, low, high});
        const std::int32_t items = std::min(low, static_cast<std::int32_t>(results.floats.size()));
        std::copy_n(results.floats.begin(), items, buffer);
        return items;
    }

    static inline SndResults results;
    static inline std::string openedPath;
    static inline std::wstring openedName;  // by its characters
    static inline std::int32_t counted = 0; // of the items that count on
    StandIns libraries;

private:
    static std::int32_t __cdecl sfOpen(const char* path, std::int32_t mode, SndfileInfo* info) {
        openedPath = path;
        StandIns::record("sf_open", {mode});
        if (results.open != 0)
            *info = results.info;
        return results.open;
    }
    static std::int32_t __cdecl sfSeek(std::int32_t file, std::int32_t low, std::int32_t high,
                                       std::int32_t whence) {
        StandIns::record("sf_seek", {file, low, high, whence});
        if (!results.seeks)
            return -1;
        return whence == 2 ? results.end : whence == 1 ? results.current : low;
    }
    static std::int32_t __cdecl sfReadShort(std::int32_t file, std::int16_t* buffer,
                                            std::int32_t low, std::int32_t high) {
        StandIns::record("sf_read_short", {file, word(buffer), low, high});
        if (results.counting == 0)
            return results.readItems;
        const std::int32_t items = std::min(low, results.counting - counted);
        for (std::int32_t item = 0; item < items; ++item)
            buffer[item] = static_cast<std::int16_t>(++counted);
        return items;
    }
    static std::int32_t __cdecl sfClose(std::int32_t file) {
        StandIns::record("sf_close", {file});
        counted = 0;
        return 0;
    }

    std::optional<DecSND> source_;
};

} // namespace corvina::test
