// CD access through the system's own request path: where the backends differ, what goes over the
// wire, which of them is chosen.

#include "VirtualDrivesFixture.h"
#include "cd/cdIOCTL.h"
#include "cd/cdManager.h"
#include "cd/cdSPTI.h"

#include <gmock/gmock.h>
#include <memory>

namespace corvina::test {
namespace {

using testing::ElementsAre;

// Where they differ

constexpr std::int32_t stale = 0x11;

TEST_F(VirtualDrives, pass_through_takes_a_scratch_for_a_success) {
    const DiscImage disc({audio(12)});
    d->load(disc, {"unreadable 5 1"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    ASSERT_TRUE(manager.SelectDevice(0));
    ASSERT_EQ(manager.SelectTrack(1), 0);
    const Bytes all = readAll(manager);
    EXPECT_EQ(all.size(), 12u * 2352);
    const Bytes first = disc.bytes(0, 4);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), all.begin()));
    const Bytes last = disc.bytes(8, 4);
    EXPECT_TRUE(std::equal(last.begin(), last.end(), all.end() - 9408));
    // Behind the scratch there is silence, and not the block before once more.
    EXPECT_TRUE(std::all_of(all.begin() + 5 * 2352, all.begin() + 8 * 2352,
                            [](std::uint8_t byte) { return byte == 0; }));
}

TEST_F(VirtualDrives, device_io_control_ends_at_a_scratch) {
    const DiscImage disc({audio(12)});
    d->load(disc, {"unreadable 5 1", "read-only"});
    e->set({"read-only"});
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    EXPECT_EQ(readAll(source), disc.bytes(0, 4));
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(VirtualDrives, aspi_ends_at_a_scratch) {
    const DiscImage disc({audio(12)});
    d->load(disc, {"unreadable 5 1", "absent"});
    e->set({"absent"});
    expectPlays(d->trackPath(1), disc.bytes(0, 4));
}

TEST_F(VirtualDrives, a_lead_out_that_cannot_be_read_ends_the_last_track_a_block_early) {
    const DiscImage disc({audio(13)});
    d->load(disc, {"no-lead-out", "read-only"});
    e->set({"read-only"});
    expectPlays(d->trackPath(1), disc.bytes(0, 12));
}

TEST_F(VirtualDrives, a_data_track_opens_but_device_io_control_reads_none_of_it) {
    const DiscImage disc({data(16), audio(8)});
    d->load(disc, {"read-only"});
    e->set({"read-only"});
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    EXPECT_TRUE(readAll(source).empty());
}

TEST_F(VirtualDrives, a_data_track_through_pass_through_is_its_raw_sectors) {
    const DiscImage disc({data(16), audio(8)});
    d->load(disc);
    expectPlays(d->trackPath(1), disc.bytes(0, 16));
}

TEST_F(VirtualDrives, a_check_condition_on_the_table_is_an_empty_table_for_pass_through) {
    const DiscImage disc({audio(8)});
    d->load(disc, {"check 43 2 3A 1"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    ASSERT_TRUE(manager.SelectDevice(0));
    EXPECT_EQ(manager.GetTOC()->TrackCount(), 1);
    EXPECT_EQ(manager.SelectTrack(1), 3);
}

TEST_F(VirtualDrives, a_check_condition_on_the_table_is_no_table_for_aspi) {
    const DiscImage disc({audio(8)});
    d->load(disc, {"check 43 2 3A 1", "absent"});
    e->set({"absent"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    ASSERT_TRUE(manager.SelectDevice(0));
    EXPECT_EQ(manager.GetTOC(), nullptr);
}

TEST_F(VirtualDrives, a_request_that_the_system_refuses_fails) {
    const DiscImage disc({audio(8)});
    d->load(disc, {"refuse 43", "refuse 1B", "refuse BE", "refuse 0"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    ASSERT_TRUE(manager.SelectDevice(0));
    EXPECT_EQ(manager.GetTOC(), nullptr);
    EXPECT_FALSE(manager.OpenCD());
    EXPECT_FALSE(manager.CloseCD());
    EXPECT_FALSE(manager.IsDiscPresent());
}

TEST_F(VirtualDrives, a_short_transfer_leaves_the_rest_of_the_buffer_alone) {
    const DiscImage disc({audio(8)});
    d->load(disc, {"short 5000"});
    cdSPTI backend;
    ASSERT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.SelectDevice(0), 0);
    Bytes block(9408, stale);
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, block.data()), 0);
    const Bytes sectors = disc.bytes(0, 4);
    EXPECT_TRUE(std::equal(block.begin(), block.begin() + 5000, sectors.begin()));
    EXPECT_TRUE(std::all_of(block.begin() + 5000, block.end(),
                            [](std::uint8_t byte) { return byte == stale; }));
}

TEST_F(VirtualDrives, a_command_that_takes_longer_than_five_seconds_fails) {
    const DiscImage disc({audio(8)});
    d->load(disc);
    cdSPTI backend;
    ASSERT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.SelectDevice(0), 0);
    d->set({"disc " + disc.cue(), "delay-us 60000000"});
    Bytes block(9408);
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, block.data()), 5);
}

TEST_F(VirtualDrives, the_tray_moves_by_start_stop_unit) {
    const DiscImage disc({audio(8)});
    d->load(disc);
    DecCDA source;
    ASSERT_TRUE(source.SelectDevice(0));
    EXPECT_TRUE(source.OpenCD());
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), 4);
    ASSERT_TRUE(source.SelectDevice(0));
    EXPECT_TRUE(source.CloseCD());
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), 0);
    const auto requests = d->requests();
    EXPECT_EQ(countOf(requests, "SG_IO 1B 00 00 00 02 00 0"), 1);
    EXPECT_EQ(countOf(requests, "SG_IO 1B 00 00 00 03 00 0"), 1);
}

TEST_F(VirtualDrives, a_table_of_nonsense_is_played_without_harm) {
    const DiscImage disc({audio(8)});
    std::string nonsense = "toc FFFF01FF";
    for (int i = 0; i < 100; ++i)
        nonsense += "00FF" + std::string(i % 2 ? "AA" : "01") + "0080000000";
    d->load(disc, {nonsense});
    DecCDA source;
    ASSERT_TRUE(source.SelectDevice(0));
    EXPECT_EQ(source.toc()->TrackCount(), 256);
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), 4);
}

// What goes over the wire

TEST_F(VirtualDrives, the_very_commands_of_pass_through) {
    const DiscImage disc({audio(300), audio(8)});
    d->load(disc);
    cdSPTI backend;
    ASSERT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.SelectDevice(0), 0);
    std::unique_ptr<cTOC> table;
    Bytes block(9408);
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_EQ(backend.ReadSectorsRAW(300, 4, block.data()), 0);
    EXPECT_TRUE(backend.IsDiscPresent());
    EXPECT_THAT(d->requests(),
                ElementsAre("SG_IO 12 00 00 00 4C 00 76", "SG_IO 43 00 00 00 00 00 00 03 24 00 804",
                            "SG_IO BE 00 00 00 01 2C 00 00 04 F8 00 00 9408",
                            "SG_IO 00 00 00 00 00 00 0"));
}

TEST_F(VirtualDrives, a_selected_track_costs_four_tables_and_a_read_none) {
    const DiscImage disc({audio(8)});
    d->load(disc);
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    ASSERT_TRUE(manager.SelectDevice(0));
    ASSERT_EQ(manager.SelectTrack(1), 0);
    EXPECT_EQ(countOf(d->requests(), "SG_IO 43"), 4);
    readAll(manager);
    EXPECT_EQ(countOf(d->requests(), "SG_IO 43"), 4);
    EXPECT_EQ(countOf(d->requests(), "SG_IO BE"), 2);
}

TEST_F(VirtualDrives, device_io_control_asks_for_four_sectors_of_audio) {
    const DiscImage disc({audio(8)});
    d->load(disc, {"read-only"});
    e->set({"read-only"});
    cdIOCTL backend;
    ASSERT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.SelectDevice(0), 0);
    Bytes block(9408);
    EXPECT_EQ(backend.ReadSectorsRAW(3, 4, block.data()), 0);
    EXPECT_THAT(d->requests(), ElementsAre("CDROMREADAUDIO 3 4"));
    EXPECT_EQ(block, disc.bytes(3, 4));
}

// The choice

TEST_F(VirtualDrives, without_any_usable_way_there_is_no_backend) {
    d->set({"absent", "no-aspi"});
    e->set({"absent", "no-aspi"});
    DecCDA source;
    EXPECT_EQ(source.DeviceCount(), 0);
    EXPECT_EQ(source.OpenSource(L"D:\\Track01.cda"), 4);
}

TEST_F(VirtualDrives, one_drive_that_opens_for_writing_is_enough_for_pass_through) {
    d->set({"read-only"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager());
    EXPECT_EQ(manager.DeviceCount(), 1);
    EXPECT_EQ(manager.DeviceChar(0), L"E");
}

TEST_F(VirtualDrives, device_io_control_disabled_leads_straight_to_aspi) {
    d->set({"read-only"});
    e->set({"read-only"});
    cdManager manager;
    ASSERT_TRUE(manager.InitManager(true));
    EXPECT_EQ(manager.DeviceName(0), L"CORVINA  VIRTUAL DRIVE    1.0 ");
}

} // namespace
} // namespace corvina::test
