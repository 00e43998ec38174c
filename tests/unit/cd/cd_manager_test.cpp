// The CD manager as the way to drives and tracks, and what it says of a track's stream.

#include "ManagerFixture.h"
#include "runtime/RuntimeError.h"
#include "stream/StrmTags.h"
#include "support/Limits.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

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

} // namespace
} // namespace corvina::test
