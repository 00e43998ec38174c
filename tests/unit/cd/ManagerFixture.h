#pragma once

// A manager over backends that record what they are asked, with a disc in the one drive.

#include "cd/cdManager.h"
#include "support/FakeBackend.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace corvina::test {

inline constexpr std::int32_t minute = 60 * 75; // in sectors

// Three tracks of one, four and three minutes; the last one ends one sector after a block of four.
inline FakeDisc disc() {
    return {{{1, 0}, {2, minute}, {3, 5 * minute}, {170, 8 * minute + 1}}};
}

class CdManager : public testing::Test {
protected:
    void SetUp() override {
        fakes.machine.drives = {disc()};
        ASSERT_TRUE(manager.InitManager());
        ASSERT_TRUE(manager.SelectDevice(0));
    }

    void selectTrack(std::uint8_t track) {
        ASSERT_EQ(manager.SelectTrack(track), 0);
        fakes.machine.tablesRead = 0;
    }
    // A fresh read of so many bytes; its result.
    std::int32_t read(std::int32_t bytes) {
        data.assign(static_cast<std::size_t>(bytes), 0xEE);
        got = 0;
        return manager.Read(data.data(), bytes, got);
    }
    // The word at an offset of what was read.
    [[nodiscard]] std::int32_t word(std::size_t offset) const {
        std::int32_t value = 0;
        std::memcpy(&value, data.data() + offset, sizeof(value));
        return value;
    }
    // Goes to that sector of the track, the first one of a second.
    void seekToSector(std::int32_t sector) {
        ASSERT_EQ(sector % 75, 0);
        ASSERT_EQ(seek(manager, sector / 75, SeekMode::seconds), 0);
    }
    // The result of a seek.
    static std::int32_t seek(cSoundSTRM& stream, std::int32_t value, std::int32_t mode) {
        return stream.SeekTo(value, mode);
    }

    FakeBackends fakes;
    cdManager manager{fakes.makers()};
    std::vector<std::uint8_t> data;
    std::int32_t got = 0;
};

} // namespace corvina::test
