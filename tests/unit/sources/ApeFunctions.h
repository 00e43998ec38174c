#pragma once

// The functions that the project's own MACDll.dll exports, as a host of that library calls them.

#include "support/BareDecoders.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace corvina::test {

inline constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

template <typename Function>
Function apeFunction(const char* name) {
    return exportOf<Function>("MACDll.dll", name);
}

class ApeFunctions : public testing::Test {
protected:
    std::int32_t(__stdcall* create)(const char*, std::int32_t*) =
        apeFunction<decltype(create)>("c_APEDecompress_Create");
    std::int32_t(__stdcall* createWide)(const wchar_t*, std::int32_t*) =
        apeFunction<decltype(createWide)>("c_APEDecompress_CreateW");
    std::int32_t(__stdcall* getInfo)(std::int32_t, std::int32_t, std::int32_t, std::int32_t) =
        apeFunction<decltype(getInfo)>("c_APEDecompress_GetInfo");
    std::int32_t(__stdcall* getData)(std::int32_t, void*, std::int32_t, std::int32_t*) =
        apeFunction<decltype(getData)>("c_APEDecompress_GetData");
    std::int32_t(__stdcall* seek)(std::int32_t, std::int32_t) =
        apeFunction<decltype(seek)>("c_APEDecompress_Seek");
    std::int32_t(__stdcall* destroy)(std::int32_t) =
        apeFunction<decltype(destroy)>("c_APEDecompress_Destroy");

    std::int32_t open() { return create(path.c_str(), nullptr); }

    std::string path = toAnsi(mediaFile(L"tune.ape")).text;
};

} // namespace corvina::test
