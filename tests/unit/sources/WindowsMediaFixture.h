#pragma once

// The Windows Media source over the stand-in for the system's library, which holds one second.

#include "StandInReader.h"
#include "sources/DecWMAMP3.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

namespace corvina::test {

class WindowsMedia : public testing::Test {
protected:
    static constexpr QWORD millisecond = 10'000;
    static constexpr QWORD second = 1000 * millisecond;

    struct ReadResult {
        std::int32_t result = -1;
        std::vector<std::uint8_t> bytes;
    };

    void SetUp() override { layFourBlocks(); }

    // Bytes that count on from first.
    static std::vector<std::uint8_t> counting(std::uint8_t first, std::size_t count) {
        std::vector<std::uint8_t> bytes(count);
        std::iota(bytes.begin(), bytes.end(), first);
        return bytes;
    }

    // One second in four blocks of ten bytes, each counting on.
    static void layFourBlocks() {
        layFile(second, {{0, counting(0, 10)},
                         {second / 4, counting(10, 10)},
                         {second / 2, counting(20, 10)},
                         {second / 4 * 3, counting(30, 10)}});
    }

    static ReadResult readFrom(DecWMAMP3& source, std::int32_t count) {
        ReadResult reading;
        reading.bytes.assign(static_cast<std::size_t>(std::max(count, 1)), 0xEE);
        std::int32_t got = -1;
        reading.result = source.Read(reading.bytes.data(), count, got);
        reading.bytes.resize(static_cast<std::size_t>(got));
        return reading;
    }

    static std::int32_t seek(DecWMAMP3& source, std::int32_t value, std::int32_t mode) {
        return source.SeekTo(value, mode);
    }

    std::vector<std::string> callsOfOpen() {
        DecWMAMP3 source(standInApi);
        (void)library.takeCalls();
        openResult = source.OpenSource(L"song.wma");
        return library.takeCalls();
    }

    std::int32_t openResult = -1;
};

} // namespace corvina::test
