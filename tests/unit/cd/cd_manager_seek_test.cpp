// Seeking in a track through the CD manager.

#include "ManagerFixture.h"
#include "support/Limits.h"

namespace corvina::test {
namespace {

TEST_F(CdManager, thirty_seconds_are_sector_2250) {
    selectTrack(1);
    EXPECT_EQ(seek(manager, 30, SeekMode::seconds), 0);
    read(4);
    EXPECT_EQ(fakes.machine.reads[0].lba, 2250);
}

TEST_F(CdManager, half_of_240_seconds_is_sector_120_a_seventy_fifth_of_its_place) {
    selectTrack(2);
    EXPECT_EQ(seek(manager, 50, SeekMode::percent), 0);
    read(4);
    EXPECT_EQ(fakes.machine.reads[0].lba, minute + 120);
}

TEST_F(CdManager, all_of_the_percent_are_not_the_end) {
    selectTrack(1);
    EXPECT_EQ(seek(manager, 100, SeekMode::percent), 0);
    EXPECT_FALSE(manager.EndOfStream());
    EXPECT_EQ(manager.Position(), 800);
}

TEST_F(CdManager, a_percentage_is_rounded_half_to_even) {
    selectTrack(1);
    EXPECT_EQ(seek(manager, 1, SeekMode::percent), 0); // 0.6
    read(4);
    EXPECT_EQ(fakes.machine.reads.back().lba, 1);
    fakes.machine.drives[0].entries = {{1, 0}, {170, 50 * 75}};
    selectTrack(1);
    EXPECT_EQ(seek(manager, 1, SeekMode::percent), 0); // 0.5
    read(9408);
    EXPECT_EQ(fakes.machine.reads.back().lba, 0);
}

TEST_F(CdManager, a_seek_out_of_range_returns_3_and_stays) {
    selectTrack(1);
    ASSERT_EQ(seek(manager, 30, SeekMode::seconds), 0);
    for (const std::int32_t value : {-1, 101, highest, lowest})
        EXPECT_EQ(seek(manager, value, SeekMode::percent), 3) << value;
    for (const std::int32_t value : {-1, 61, highest, lowest})
        EXPECT_EQ(seek(manager, value, SeekMode::seconds), 3) << value;
    EXPECT_EQ(manager.Position(), 30000);
}

TEST_F(CdManager, the_very_end_in_seconds_is_accepted) {
    selectTrack(1);
    EXPECT_EQ(seek(manager, 60, SeekMode::seconds), 0);
    EXPECT_TRUE(manager.EndOfStream());
}

TEST_F(CdManager, the_bound_in_seconds_is_not_rounded) {
    fakes.machine.drives[0].entries = {{1, 0}, {170, 13545}}; // 180.6 s
    selectTrack(1);
    EXPECT_EQ(seek(manager, 180, SeekMode::seconds), 0);
    EXPECT_EQ(seek(manager, 181, SeekMode::seconds), 3);
}

TEST_F(CdManager, any_other_mode_returns_0_and_stays) {
    selectTrack(1);
    ASSERT_EQ(seek(manager, 30, SeekMode::seconds), 0);
    for (const std::int32_t mode : {2, -1, highest, lowest})
        EXPECT_EQ(seek(manager, 0, mode), 0) << mode;
    EXPECT_EQ(manager.Position(), 30000);
}

TEST_F(CdManager, a_seek_makes_silence_of_what_is_left_in_the_buffer) {
    selectTrack(2);
    EXPECT_EQ(read(9400), 0);
    ASSERT_EQ(seek(manager, 30, SeekMode::seconds), 0);
    EXPECT_EQ(read(12), 0);
    EXPECT_EQ(word(0), 0);
    EXPECT_EQ(word(4), 0);
    EXPECT_EQ(word(8), minute + 2250);
}

TEST_F(CdManager, a_seek_that_goes_nowhere_makes_silence_all_the_same) {
    struct Seek {
        std::int32_t value, mode, result;
    };
    const Seek seeks[] = {{-1, SeekMode::seconds, 3},
                          {241, SeekMode::seconds, 3},
                          {-1, SeekMode::percent, 3},
                          {101, SeekMode::percent, 3},
                          {30, 2, 0},
                          {30, -1, 0}};
    selectTrack(2);
    for (const auto& [value, mode, result] : seeks) {
        EXPECT_EQ(read(9400), 0);
        EXPECT_EQ(seek(manager, value, mode), result);
        EXPECT_EQ(read(8), 0);
        EXPECT_EQ(word(0), 0) << value << ", mode " << mode;
        EXPECT_EQ(word(4), 0) << value << ", mode " << mode;
    }
}

TEST_F(CdManager, a_seek_reads_nothing_from_the_drive) {
    selectTrack(2);
    ASSERT_EQ(seek(manager, 30, SeekMode::seconds), 0);
    EXPECT_TRUE(fakes.machine.reads.empty());
    EXPECT_EQ(fakes.machine.tablesRead, 0);
}

TEST_F(CdManager, a_mode_is_not_written) {
    selectTrack(1);
    std::int32_t mode = SeekMode::seconds;
    manager.SeekTo(1, mode);
    EXPECT_EQ(mode, SeekMode::seconds);
}

} // namespace
} // namespace corvina::test
