#pragma once

// The two virtual drives of the test environment, and what is heard from a track in them.

#include "sources/DecCDA.h"
#include "support/VirtualDrive.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace corvina::test {

constexpr DiscTrack audio(std::int32_t sectors) {
    return {true, sectors};
}
constexpr DiscTrack data(std::int32_t sectors) {
    return {false, sectors};
}

class VirtualDrives : public testing::Test {
protected:
    void SetUp() override {
        if (!VirtualDrive::exists('d') || !VirtualDrive::exists('e'))
            GTEST_SKIP() << "the test environment has no two virtual CD drives";
        d.emplace('d');
        e.emplace('e');
    }

    // Reads a source to its end; at most so many bytes.
    static Bytes readAll(cSoundSTRM& source, std::size_t limit = 4 << 20) {
        Bytes all;
        std::int32_t result = 0;
        while (result == 0 && all.size() < limit) {
            Bytes piece(8000);
            std::int32_t got = 0;
            result = source.Read(piece.data(), static_cast<std::int32_t>(piece.size()), got);
            all.insert(all.end(), piece.begin(), piece.begin() + got);
        }
        return all;
    }
    // Expects that a track file opens and that its track delivers these bytes.
    static void expectPlays(const std::wstring& path, const Bytes& expected) {
        DecCDA source;
        ASSERT_EQ(source.OpenSource(path), 0);
        EXPECT_EQ(readAll(source), expected);
    }
    static long countOf(const std::vector<std::string>& requests, const std::string& beginning) {
        return static_cast<long>(std::ranges::count_if(
            requests, [&](const std::string& line) { return line.starts_with(beginning); }));
    }

    std::optional<VirtualDrive> d;
    std::optional<VirtualDrive> e;
};

} // namespace corvina::test
