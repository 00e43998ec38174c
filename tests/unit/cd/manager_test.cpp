#include "cd/cdManager.h"
#include "runtime/RuntimeError.h"
#include "stream/StrmTags.h"
#include "support/FakeBackend.h"

#include <cstring>
#include <gmock/gmock.h>
#include <limits>

namespace corvina {
namespace {

using test::FakeBackends;
using test::FakeDisc;
using testing::ElementsAre;

constexpr auto highest = std::numeric_limits<std::int32_t>::max();
constexpr auto lowest = std::numeric_limits<std::int32_t>::min();

constexpr std::int32_t minute = 60 * 75;

// Three tracks of one, four and three minutes; the last one ends one sector after a block of four.
FakeDisc disc() {
    return {{{1, 0}, {2, minute}, {3, 5 * minute}, {170, 8 * minute + 1}}};
}

std::int32_t seek(cSoundSTRM& stream, std::int32_t value, std::int32_t mode) {
    return stream.SeekTo(value, mode);
}

// Choosing a backend

class CdManagerChoice : public testing::Test {
protected:
    FakeBackends fakes;
    bool disableIoctl = false;

    bool chooses() {
        cdManager manager(fakes.makers());
        return manager.InitManager(disableIoctl);
    }
    [[nodiscard]] std::vector<std::string> initialised() const {
        std::vector<std::string> result;
        for (const std::string& line : fakes.log)
            if (line.ends_with(" InitMe"))
                result.push_back(line.substr(0, line.find(' ')));
        return result;
    }
};

TEST_F(CdManagerChoice, is_scsi_pass_through_first_and_no_other_is_initialised) {
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI"));
}

TEST_F(CdManagerChoice, falls_to_device_io_control) {
    fakes.SPTI = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL"));
}

TEST_F(CdManagerChoice, falls_to_aspi_last) {
    fakes.SPTI = fakes.IOCTL = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL", "ASPI"));
}

TEST_F(CdManagerChoice, is_none_when_all_fail) {
    fakes.SPTI = fakes.IOCTL = fakes.ASPI = 4;
    EXPECT_FALSE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL", "ASPI"));
}

TEST_F(CdManagerChoice, passes_over_device_io_control_where_it_is_disabled) {
    disableIoctl = true;
    fakes.SPTI = 4;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "ASPI"));
}

TEST_F(CdManagerChoice, takes_any_other_status_for_a_failure) {
    fakes.SPTI = -1;
    EXPECT_TRUE(chooses());
    EXPECT_THAT(initialised(), ElementsAre("SPTI", "IOCTL"));
}

TEST_F(CdManagerChoice, releases_a_failed_backend_without_DeInitMe_before_it_tries_the_next) {
    fakes.SPTI = 4;
    chooses();
    EXPECT_THAT(fakes.log,
                ElementsAre("SPTI made", "IOCTL made", "ASPI made", "SPTI InitMe", "SPTI gone",
                            "IOCTL InitMe", "IOCTL DeInitMe", "IOCTL gone", "ASPI gone"));
}

TEST_F(CdManagerChoice, can_be_made_again_from_nothing) {
    cdManager manager(fakes.makers());
    EXPECT_TRUE(manager.InitManager());
    fakes.log.clear();
    EXPECT_TRUE(manager.InitManager());
    EXPECT_THAT(initialised(), ElementsAre("SPTI"));
    fakes.SPTI = fakes.IOCTL = fakes.ASPI = 4;
    EXPECT_FALSE(manager.InitManager());
    EXPECT_EQ(manager.DeviceCount(), 0);
}

TEST_F(CdManagerChoice, of_none_leaves_nothing_to_deinitialise) {
    fakes.SPTI = fakes.IOCTL = fakes.ASPI = 4;
    chooses();
    for (const std::string& line : fakes.log)
        EXPECT_FALSE(line.ends_with("DeInitMe")) << line;
}

// Without a backend

class CdManagerWithoutBackend : public testing::Test {
protected:
    FakeBackends fakes;
    cdManager manager{fakes.makers()};
};

TEST_F(CdManagerWithoutBackend, answers_false_0_and_empty_text) {
    EXPECT_FALSE(manager.SelectDevice(0));
    EXPECT_EQ(manager.DeviceCount(), 0);
    for (const std::int32_t index : {0, -1, highest}) {
        EXPECT_EQ(manager.DeviceName(index), L"");
        EXPECT_EQ(manager.DeviceChar(index), L"");
    }
    EXPECT_FALSE(manager.OpenCD());
    EXPECT_FALSE(manager.CloseCD());
    EXPECT_FALSE(manager.IsDiscPresent());
}

TEST_F(CdManagerWithoutBackend, a_table_is_an_object_that_is_not_set) {
    try {
        static_cast<void>(manager.GetTOC());
        FAIL() << "nothing was raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 91);
    }
}

TEST_F(CdManagerWithoutBackend, no_track_can_be_selected) {
    EXPECT_EQ(manager.SelectTrack(1), 3);
}

TEST_F(CdManagerWithoutBackend, a_read_finds_the_end_at_once) {
    char byte = 0;
    std::int32_t got = 0;
    EXPECT_EQ(manager.Read(&byte, 1, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(manager.EndOfStream());
}

TEST_F(CdManagerWithoutBackend, that_was_there_before_a_read_fails) {
    fakes.machine.drives = {disc()};
    ASSERT_TRUE(manager.InitManager());
    ASSERT_EQ(manager.SelectTrack(1), 0);
    fakes.SPTI = fakes.IOCTL = fakes.ASPI = 4;
    ASSERT_FALSE(manager.InitManager());
    char byte = 0;
    std::int32_t got = 0;
    EXPECT_EQ(manager.Read(&byte, 1, got), 5);
}

// With a backend

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
    // Sets the offset of a track so that this many sectors are left.
    void seekToSector(std::int32_t sector) {
        ASSERT_EQ(sector % 75, 0);
        ASSERT_EQ(seek(manager, sector / 75, SeekMode::seconds), 0);
    }

    FakeBackends fakes;
    cdManager manager{fakes.makers()};
    std::vector<std::uint8_t> data;
    std::int32_t got = 0;
};

TEST_F(CdManager, forwards_the_drives) {
    EXPECT_EQ(manager.DeviceCount(), 1);
    EXPECT_EQ(manager.DeviceName(0), L"drive 0");
    EXPECT_EQ(manager.DeviceChar(0), L"D");
    EXPECT_TRUE(manager.IsDiscPresent());
    fakes.machine.discPresent = false;
    EXPECT_FALSE(manager.IsDiscPresent());
}

TEST_F(CdManager, selects_by_the_backends_status) {
    EXPECT_TRUE(manager.SelectDevice(0));
    for (const std::int32_t index : {-1, 1, highest})
        EXPECT_FALSE(manager.SelectDevice(index)) << index;
}

TEST_F(CdManager, moves_the_tray_by_the_backends_status) {
    EXPECT_TRUE(manager.OpenCD());
    EXPECT_TRUE(manager.CloseCD());
    fakes.machine.trayStatus = 4;
    EXPECT_FALSE(manager.OpenCD());
    EXPECT_FALSE(manager.CloseCD());
}

TEST_F(CdManager, gives_a_new_table_each_time) {
    const auto first = manager.GetTOC();
    const auto second = manager.GetTOC();
    EXPECT_EQ(first->TrackCount(), 4);
    EXPECT_NE(first, second);
    EXPECT_EQ(fakes.machine.tablesRead, 2);
}

TEST_F(CdManager, gives_no_table_when_the_backend_fails) {
    fakes.machine.tableReadable = [] { return false; };
    EXPECT_EQ(manager.GetTOC(), nullptr);
}

TEST_F(CdManager, track_0_and_the_lead_out_are_refused_with_3) {
    EXPECT_EQ(manager.SelectTrack(0), 3);
    EXPECT_EQ(manager.SelectTrack(4), 3);
    EXPECT_EQ(manager.SelectTrack(255), 3);
    EXPECT_EQ(manager.SelectTrack(3), 0);
}

TEST_F(CdManager, a_refused_track_changes_nothing) {
    selectTrack(2);
    read(100);
    EXPECT_EQ(manager.SelectTrack(4), 3);
    EXPECT_EQ(manager.Duration(), 240000);
    EXPECT_EQ(manager.Position(), 53);
}

TEST_F(CdManager, a_missing_table_refuses_every_track_with_3) {
    fakes.machine.tableReadable = [] { return false; };
    EXPECT_EQ(manager.SelectTrack(1), 3);
}

TEST_F(CdManager, a_track_is_selected_by_reading_the_table_four_times) {
    EXPECT_EQ(manager.SelectTrack(1), 0);
    EXPECT_EQ(fakes.machine.tablesRead, 4);
}

TEST_F(CdManager, a_refused_track_reads_the_table_once) {
    EXPECT_EQ(manager.SelectTrack(4), 3);
    EXPECT_EQ(fakes.machine.tablesRead, 1);
}

TEST_F(CdManager, a_table_that_fails_in_mid_selection_is_passed_over) {
    selectTrack(1);
    for (const int failing : {2, 3, 4}) {
        fakes.machine.tablesRead = 0;
        fakes.machine.tableReadable = [&] { return fakes.machine.tablesRead != failing; };
        EXPECT_EQ(manager.SelectTrack(2), 0) << failing;
    }
}

TEST_F(CdManager, a_disc_that_vanishes_in_mid_selection_leaves_the_former_track) {
    selectTrack(1);
    fakes.machine.tableReadable = [&] { return fakes.machine.tablesRead < 2; };
    EXPECT_EQ(manager.SelectTrack(2), 0);
    EXPECT_EQ(manager.Duration(), 60000);
    EXPECT_EQ(manager.Position(), 0);
}

TEST_F(CdManager, a_first_track_on_a_disc_that_vanishes_has_no_length) {
    fakes.machine.tableReadable = [&] { return fakes.machine.tablesRead < 2; };
    EXPECT_EQ(manager.SelectTrack(2), 0);
    EXPECT_TRUE(manager.EndOfStream());
    EXPECT_EQ(read(4), 5);
    EXPECT_TRUE(fakes.machine.reads.empty());
}

TEST_F(CdManager, a_data_track_is_not_refused) {
    fakes.machine.drives[0].entries[1].control = 4;
    EXPECT_EQ(manager.SelectTrack(2), 0);
}

TEST_F(CdManager, the_lead_out_ends_the_last_track) {
    selectTrack(3);
    EXPECT_EQ(manager.Duration(), 180013); // three minutes and one sector
}

TEST_F(CdManager, a_track_of_4500_sectors_lasts_60000_ms) {
    selectTrack(1);
    EXPECT_EQ(manager.Duration(), 60000);
}

TEST_F(CdManager, a_table_in_descending_order_makes_a_track_that_has_ended) {
    fakes.machine.drives[0].entries = {{1, 1000}, {2, 500}, {170, -150}};
    EXPECT_EQ(manager.SelectTrack(1), 0);
    EXPECT_TRUE(manager.EndOfStream());
    EXPECT_EQ(read(4), 5);
    EXPECT_EQ(seek(manager, 0, SeekMode::seconds), 3);
    EXPECT_EQ(seek(manager, 100, SeekMode::percent), 0);
    EXPECT_TRUE(manager.EndOfStream());
}

TEST_F(CdManager, a_length_beyond_32_bits_is_a_step_passed_over) {
    fakes.machine.drives[0].entries = {{1, lowest}, {170, highest}};
    EXPECT_EQ(manager.SelectTrack(1), 0);
    EXPECT_TRUE(manager.EndOfStream());
}

// Only a disc that changes in mid-selection leaves such a track: a new start with a former length.
TEST_F(CdManager, an_address_beyond_32_bits_raises_overflow) {
    selectTrack(1);
    fakes.machine.drives[0].entries = {{1, highest}, {170, highest}};
    fakes.machine.tableReadable = [&] { return fakes.machine.tablesRead != 4; };
    ASSERT_EQ(manager.SelectTrack(1), 0);
    ASSERT_EQ(seek(manager, 1, SeekMode::seconds), 0);
    EXPECT_THROW(read(4), RuntimeError);
    EXPECT_TRUE(fakes.machine.reads.empty());
}

TEST_F(CdManager, a_length_in_milliseconds_beyond_32_bits_raises_overflow) {
    fakes.machine.drives[0].entries = {{1, 0}, {170, highest}};
    ASSERT_EQ(manager.SelectTrack(1), 0);
    EXPECT_THROW(manager.Duration(), RuntimeError);
}

// The stream's description

TEST_F(CdManager, describes_itself_as_its_stream) {
    EXPECT_EQ(&manager.Info(), static_cast<cSoundInf*>(&manager));
    EXPECT_THAT(manager.Extensions(), ElementsAre(L"cda"));
    EXPECT_TRUE(manager.Seekable());
    EXPECT_EQ(manager.Tags(), nullptr);
    EXPECT_TRUE(manager.Force16Bit());
}

TEST_F(CdManager, has_the_format_of_raw_sectors) {
    const WAVEFORMATEX* format = manager.WFXPointer();
    EXPECT_EQ(format->wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(format->nChannels, 2);
    EXPECT_EQ(format->nSamplesPerSec, 44100u);
    EXPECT_EQ(format->nAvgBytesPerSec, 176400u);
    EXPECT_EQ(format->nBlockAlign, 4);
    EXPECT_EQ(format->wBitsPerSample, 16);
    EXPECT_EQ(format->cbSize, 0);
    EXPECT_EQ(manager.SampleRate(), 44100);
    EXPECT_EQ(manager.Channels(), 2);
    EXPECT_EQ(manager.BitsPerSample(), 16);
    EXPECT_EQ(manager.Bitrate(), 1411200);
}

TEST_F(CdManager, opens_nothing_by_name) {
    selectTrack(1);
    EXPECT_EQ(manager.OpenSource(L"D:\\Track01.cda"), 1);
    EXPECT_EQ(manager.CloseSource(), 0);
    EXPECT_EQ(manager.Duration(), 60000);
}

// Reading

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

TEST_F(CdManager, after_the_last_block_the_stream_has_ended_and_a_read_answers_5) {
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

TEST_F(CdManager, bytes_left_from_the_former_track_come_first) {
    selectTrack(2);
    EXPECT_EQ(read(9400), 0);
    selectTrack(1);
    EXPECT_EQ(read(12), 0);
    EXPECT_EQ(word(0), minute + 3);
    EXPECT_EQ(word(4), minute + 3);
    EXPECT_EQ(word(8), 0);
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

// Seeking

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

TEST_F(CdManager, a_seek_out_of_range_answers_3_and_stays) {
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

TEST_F(CdManager, the_bound_in_seconds_is_compared_with_its_fraction) {
    selectTrack(3); // 180.013 s
    EXPECT_EQ(seek(manager, 180, SeekMode::seconds), 0);
    EXPECT_EQ(seek(manager, 181, SeekMode::seconds), 3);
}

TEST_F(CdManager, any_other_mode_answers_0_and_stays) {
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

TEST_F(CdManager, a_refused_seek_makes_silence_all_the_same) {
    selectTrack(2);
    EXPECT_EQ(read(9400), 0);
    ASSERT_EQ(seek(manager, -1, SeekMode::seconds), 3);
    EXPECT_EQ(read(8), 0);
    EXPECT_EQ(word(0), 0);
    EXPECT_EQ(word(4), 0);
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
} // namespace corvina
