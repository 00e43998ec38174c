#pragma once

// The APE source over stand-ins for the functions of MACDll.dll, which write every call down.

#include "sources/DecAPE.h"
#include "support/StandIns.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

namespace corvina::test {

inline constexpr std::int32_t handle = 0xA9E;

// What the stand-ins return.
struct ApeResults {
    std::int32_t create = handle;
    std::map<std::int32_t, std::int32_t> information{{1003, 44100}, {1004, 16},     {1006, 2},
                                                     {1007, 4},     {1016, 441000}, {1017, 10000},
                                                     {1018, 700},   {2001, 1234}};
    std::int32_t retrieved = 0;
    bool fails = false; // getData leaves the count as it was
};
inline ApeResults results;
inline std::string openedPath;

inline std::int32_t __stdcall create(const char* path, std::int32_t* error) {
    openedPath = path;
    StandIns::record("Create", {});
    *error = 0;
    return results.create;
}
inline std::int32_t __stdcall getInfo(std::int32_t decoder, std::int32_t field, std::int32_t first,
                                      std::int32_t second) {
    StandIns::record("GetInfo", {decoder, field, first, second});
    return decoder == 0 ? 0 : results.information[field];
}
inline std::int32_t __stdcall getData(std::int32_t decoder, std::int32_t buffer,
                                      std::int32_t blocks, std::int32_t* retrieved) {
    StandIns::record("GetData", {decoder, buffer, blocks});
    if (results.fails)
        return -1;
    *retrieved = results.retrieved;
    return 0;
}
inline std::int32_t __stdcall seekTo(std::int32_t decoder, std::int32_t block) {
    StandIns::record("Seek", {decoder, block});
    return 0;
}
inline std::int32_t __stdcall destroy(std::int32_t decoder) {
    StandIns::record("Destroy", {decoder});
    return 0;
}

inline std::int32_t seek(DecAPE& source, std::int32_t value, std::int32_t mode) {
    return source.SeekTo(value, mode);
}

class ApeCalls : public testing::Test {
protected:
    ApeCalls() {
        results = {};
        libraries.add("MACDll.dll", {{"c_APEDecompress_Create", standIn(&create)},
                                     {"c_APEDecompress_GetInfo", standIn(&getInfo)},
                                     {"c_APEDecompress_GetData", standIn(&getData)},
                                     {"c_APEDecompress_Seek", standIn(&seekTo)},
                                     {"c_APEDecompress_Destroy", standIn(&destroy)}});
    }

    DecAPE& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(path), 0);
        libraries.calls.clear();
        return *source_;
    }

    TempFolder folder;
    std::wstring path = folder.write(L"a.ape", {1});
    StandIns libraries;

private:
    std::optional<DecAPE> source_;
};

inline Call info(std::int32_t field) {
    return {"GetInfo", {handle, field, 0, 0}};
}

} // namespace corvina::test
