// Reading a track through the CD manager: blocks of four sectors, the end, failures.

#include "ManagerFixture.h"
#include "runtime/RuntimeError.h"
#include "support/Limits.h"

#include <cstring>
#include <vector>

namespace corvina::test {
namespace {

TEST_F(CdManager, ten_thousand_bytes_take_two_drive_reads_and_leave_8816) {
    selectTrack(2);
    EXPECT_EQ(read(10000), 0);
    EXPECT_EQ(got, 10000);
    ASSERT_EQ(fakes.machine.reads.size(), 2u);
    EXPECT_EQ(fakes.machine.reads[0].lba, minute);
    EXPECT_EQ(fakes.machine.reads[1].lba, minute + 4);
    EXPECT_EQ(fakes.machine.reads[0].sectors, 4);
    EXPECT_EQ(read(8816), 0);
    EXPECT_EQ(fakes.machine.reads.size(), 2u);
    EXPECT_EQ(read(1), 0);
    EXPECT_EQ(fakes.machine.reads.size(), 3u);
}

TEST_F(CdManager, delivers_every_sector_in_order_across_reads_of_any_size) {
    selectTrack(2);
    std::vector<std::uint8_t> all;
    for (const std::int32_t bytes : {4, 9400, 8, 20000, 2352, 1, 3, 8000}) {
        ASSERT_EQ(read(bytes), 0);
        ASSERT_EQ(got, bytes);
        all.insert(all.end(), data.begin(), data.end());
    }
    for (std::size_t i = 0; i + 4 <= all.size(); i += 4) {
        std::int32_t value = 0;
        std::memcpy(&value, all.data() + i, sizeof(value));
        ASSERT_EQ(value, minute + static_cast<std::int32_t>(i) / bytesPerSector) << i;
    }
}

TEST_F(CdManager, a_read_that_has_all_its_bytes_leaves_the_drive_alone) {
    selectTrack(1);
    got = 100;
    EXPECT_EQ(manager.Read(nullptr, 100, got), 0);
    EXPECT_EQ(manager.Read(nullptr, -1, got), 0);
    EXPECT_EQ(manager.Read(nullptr, lowest, got), 0);
    EXPECT_EQ(got, 100);
    EXPECT_TRUE(fakes.machine.reads.empty());
}

TEST_F(CdManager, a_read_goes_on_behind_the_bytes_that_are_there) {
    selectTrack(2);
    data.assign(12, 0xEE);
    got = 4;
    EXPECT_EQ(manager.Read(data.data(), 12, got), 0);
    EXPECT_EQ(got, 12);
    EXPECT_EQ(word(0), static_cast<std::int32_t>(0xEEEEEEEE));
    EXPECT_EQ(word(4), minute);
}

TEST_F(CdManager, a_negative_count_of_bytes_that_are_there_is_an_invalid_call) {
    selectTrack(1);
    for (const std::int32_t there : {-1, lowest}) {
        got = there;
        char byte = 0;
        EXPECT_THROW(manager.Read(&byte, 1, got), RuntimeError);
    }
    EXPECT_TRUE(fakes.machine.reads.empty());
}

TEST_F(CdManager, a_read_to_nowhere_is_an_invalid_call) {
    selectTrack(1);
    got = 0;
    EXPECT_THROW(manager.Read(nullptr, 1, got), RuntimeError);
}

TEST_F(CdManager, four_sectors_are_read_past_the_end_of_the_track) {
    selectTrack(3);
    seekToSector(3 * minute);
    EXPECT_EQ(read(9408), 0);
    ASSERT_EQ(fakes.machine.reads.size(), 1u);
    EXPECT_EQ(fakes.machine.reads[0].lba, 8 * minute);
    EXPECT_EQ(fakes.machine.reads[0].sectors, 4);
    EXPECT_EQ(word(0), 8 * minute);
    EXPECT_EQ(word(9404), 8 * minute + 3); // beyond the lead-out's start
}

TEST_F(CdManager, after_the_last_block_the_stream_has_ended_and_a_read_returns_5) {
    selectTrack(3);
    seekToSector(3 * minute);
    EXPECT_FALSE(manager.EndOfStream());
    EXPECT_EQ(read(9408), 0);
    EXPECT_TRUE(manager.EndOfStream());
    EXPECT_EQ(read(1), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(CdManager, the_bytes_before_the_end_are_counted) {
    selectTrack(3);
    seekToSector(3 * minute);
    EXPECT_EQ(read(10000), 5);
    EXPECT_EQ(got, 9408);
    EXPECT_EQ(word(9404), 8 * minute + 3);
    EXPECT_EQ(data[9408], 0xEE);
}

// The position within the buffer only moves when a read is served whole.
TEST_F(CdManager, a_read_after_a_failed_one_delivers_the_same_rest_again) {
    selectTrack(3);
    seekToSector(3 * minute);
    EXPECT_EQ(read(10000), 5);
    EXPECT_EQ(read(4000), 0);
    EXPECT_EQ(word(0), 8 * minute);
}

TEST_F(CdManager, a_drive_that_fails_ends_the_stream_like_the_end_of_the_track) {
    selectTrack(2);
    fakes.machine.sectorReadable = [](std::int32_t lba) { return lba < minute + 4; };
    EXPECT_EQ(read(10000), 5);
    EXPECT_EQ(got, 9408);
    EXPECT_FALSE(manager.EndOfStream());
    EXPECT_EQ(manager.Position(), 53);
}

TEST_F(CdManager, a_block_that_failed_is_asked_for_again) {
    selectTrack(2);
    fakes.machine.sectorReadable = [](std::int32_t) { return false; };
    EXPECT_EQ(read(4), 5);
    fakes.machine.sectorReadable = [](std::int32_t) { return true; };
    EXPECT_EQ(read(4), 0);
    ASSERT_EQ(fakes.machine.reads.size(), 2u);
    EXPECT_EQ(fakes.machine.reads[0].lba, fakes.machine.reads[1].lba);
}

TEST_F(CdManager, a_block_that_the_drive_refuses_is_silence_and_not_the_block_before) {
    selectTrack(2);
    fakes.machine.refused = [](std::int32_t lba) { return lba == minute + 4; };
    EXPECT_EQ(read(3 * 9408), 0);
    EXPECT_EQ(word(9404), minute + 3);
    for (std::size_t offset = 9408; offset < 2u * 9408; offset += 4)
        ASSERT_EQ(word(offset), 0) << offset;
    EXPECT_EQ(word(2u * 9408), minute + 8);
}

TEST_F(CdManager, a_read_that_fails_leaves_the_rest_of_the_block_before) {
    selectTrack(2);
    EXPECT_EQ(read(9400), 0);
    fakes.machine.sectorReadable = [](std::int32_t) { return false; };
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(read(12), 5);
        EXPECT_EQ(got, 8);
        EXPECT_EQ(word(0), minute + 3);
    }
}

TEST_F(CdManager, reads_into_a_buffer_that_every_driver_takes) {
    // Another place in memory each time.
    std::vector<std::unique_ptr<cdManager>> managers;
    for (int i = 0; i < 20; ++i) {
        managers.push_back(std::make_unique<cdManager>(fakes.makers()));
        managers.back()->InitManager();
        managers.back()->SelectDevice(0);
        managers.back()->SelectTrack(1);
        got = 0;
        data.assign(4, 0);
        EXPECT_EQ(managers.back()->Read(data.data(), 4, got), 0);
    }
    ASSERT_EQ(fakes.machine.buffers.size(), 20u);
    for (const void* buffer : fakes.machine.buffers)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer) % 16, 0u);
}

TEST_F(CdManager, bytes_left_from_the_former_track_come_first) {
    selectTrack(2);
    EXPECT_EQ(read(9400), 0);
    selectTrack(1);
    EXPECT_EQ(read(12), 0);
    EXPECT_EQ(word(0), minute + 3);
    EXPECT_EQ(word(4), minute + 3);
    EXPECT_EQ(word(8), 0);
}

TEST_F(CdManager, the_last_block_of_a_track_read_to_its_end_comes_again_before_the_next) {
    selectTrack(1);
    seekToSector(4425);
    EXPECT_EQ(read(80 * 2352), 5);
    EXPECT_EQ(got, 76 * 2352);
    selectTrack(3);
    EXPECT_EQ(read(9412), 0);
    EXPECT_EQ(word(0), 4497);
    EXPECT_EQ(word(9404), 4500);
    EXPECT_EQ(word(9408), 5 * minute);
}

TEST_F(CdManager, the_position_runs_ahead_by_a_block) {
    selectTrack(1);
    EXPECT_EQ(manager.Position(), 0);
    read(4);
    EXPECT_EQ(manager.Position(), 53);
    read(9404);
    EXPECT_EQ(manager.Position(), 53);
    read(4);
    EXPECT_EQ(manager.Position(), 107);
}

TEST_F(CdManager, reading_does_not_ask_for_the_table) {
    selectTrack(1);
    read(20000);
    EXPECT_EQ(fakes.machine.tablesRead, 0);
}

} // namespace
} // namespace corvina::test
