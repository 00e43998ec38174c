// CD access through the system's own request path, against the virtual drives of the stage.

#include "cd/cdIOCTL.h"
#include "cd/cdManager.h"
#include "cd/cdSPTI.h"
#include "runtime/RuntimeError.h"
#include "sources/DecCDA.h"
#include "support/MessagePump.h"
#include "support/VirtualDrive.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <optional>

namespace corvina {
namespace {

using test::Bytes;
using test::DiscImage;
using test::DiscTrack;
using test::VirtualDrive;
using testing::ElementsAre;

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
            GTEST_SKIP() << "the stage has no two virtual CD drives";
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

// What all three backends do alike

enum class Way { SPTI, IOCTL, ASPI };

class EveryWay : public VirtualDrives, public testing::WithParamInterface<Way> {
protected:
    // What the drives must be like for the manager to end up with this backend.
    [[nodiscard]] std::vector<std::string> lines(std::vector<std::string> more = {}) const {
        if (GetParam() == Way::IOCTL)
            more.emplace_back("read-only");
        if (GetParam() == Way::ASPI)
            more.emplace_back("absent");
        return more;
    }
    void load(const DiscImage& disc, std::vector<std::string> more = {}) {
        d->load(disc, lines(std::move(more)));
        e->set(lines());
    }
};

std::string wayName(const testing::TestParamInfo<Way>& way) {
    switch (way.param) {
    case Way::SPTI:
        return "SPTI";
    case Way::IOCTL:
        return "IOCTL";
    default:
        return "ASPI";
    }
}

INSTANTIATE_TEST_SUITE_P(Backends, EveryWay, testing::Values(Way::SPTI, Way::IOCTL, Way::ASPI),
                         wayName);

TEST_P(EveryWay, lists_both_drives) {
    const DiscImage disc({audio(8)});
    load(disc);
    DecCDA source;
    EXPECT_EQ(source.DeviceCount(), 2);
    EXPECT_TRUE(source.SelectDevice(1));
    EXPECT_FALSE(source.SelectDevice(2));
    const std::wstring name =
        GetParam() == Way::IOCTL ? L"Generic CD-ROM drive v1" : L"CORVINA  VIRTUAL DRIVE    1.0 ";
    EXPECT_EQ(source.DeviceName(0), name);
}

TEST_P(EveryWay, lists_a_disc_of_ten_mixed_tracks) {
    const DiscImage disc({data(12), audio(16), audio(20), data(8), audio(8), audio(12), data(16),
                          data(8), audio(4), audio(9)});
    load(disc);
    DecCDA source;
    ASSERT_TRUE(source.SelectDevice(0));
    const auto table = source.toc();
    ASSERT_TRUE(table);
    ASSERT_EQ(table->TrackCount(), 11);
    for (int track = 1; track <= 10; ++track) {
        EXPECT_EQ(table->track(track)->TrackNumber(), track);
        EXPECT_EQ(table->track(track)->StartLBA(), disc.start(track)) << track;
        const bool isData = track == 1 || track == 4 || track == 7 || track == 8;
        EXPECT_EQ(table->track(track)->IsAudio(), !isData) << track;
    }
    EXPECT_EQ(table->track(11)->TrackNumber(), 170);
    EXPECT_EQ(table->track(11)->StartLBA(), disc.start(11));
}

TEST_P(EveryWay, every_audio_track_of_a_mixed_disc_delivers_its_very_bytes) {
    const DiscImage disc({data(12), audio(16), audio(20), data(8), audio(8), audio(12)});
    load(disc);
    for (const int track : {2, 3, 5, 6}) {
        SCOPED_TRACE(track);
        expectPlays(d->trackPath(track), disc.bytes(disc.start(track), disc.sectors(track)));
    }
}

TEST_P(EveryWay, the_last_block_runs_into_the_next_track) {
    const DiscImage disc({audio(13), audio(8)});
    load(disc);
    expectPlays(d->trackPath(1), disc.bytes(0, 16));
}

TEST_P(EveryWay, the_last_block_of_the_disc_runs_into_the_lead_out) {
    const DiscImage disc({audio(8), audio(13)});
    load(disc);
    expectPlays(d->trackPath(2), disc.bytes(8, 16));
}

TEST_P(EveryWay, a_track_file_of_another_disc_is_refused_with_4) {
    const DiscImage disc({audio(8), audio(12)});
    const DiscImage other({audio(9), audio(12)});
    load(disc);
    e->load(other, lines());
    d->set(lines());
    DecCDA source;
    EXPECT_EQ(source.OpenSource(e->trackPath(1)), 0);
    e->set(lines({"disc " + disc.cue()}));
    EXPECT_EQ(source.OpenSource(e->trackPath(1)), 4);
}

TEST_P(EveryWay, empty_drives_are_refused_with_4) {
    const DiscImage disc({audio(8)});
    load(disc);
    d->set(lines());
    DecCDA source;
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), 4);
}

TEST_P(EveryWay, an_open_tray_is_refused_with_4) {
    const DiscImage disc({audio(8)});
    load(disc, {"tray open"});
    DecCDA source;
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), 4);
}

TEST_P(EveryWay, the_disc_is_found_in_the_second_drive) {
    const DiscImage disc({audio(8)});
    d->load(disc, lines());
    e->load(disc, lines());
    d->set(lines());
    expectPlays(e->trackPath(1), disc.bytes(0, 8));
}

TEST_P(EveryWay, of_two_drives_with_the_same_disc_the_first_plays_whatever_the_path_says) {
    const DiscImage disc({audio(8)});
    d->load(disc, lines());
    e->load(disc, lines());
    DecCDA source;
    ASSERT_EQ(source.OpenSource(e->trackPath(1)), 0);
    readAll(source);
    const auto requests = e->requests();
    EXPECT_EQ(countOf(requests, "SG_IO BE") + countOf(requests, "CDROMREADAUDIO") +
                  countOf(requests, "ASPI BE"),
              0);
}

TEST_P(EveryWay, a_disc_changed_in_mid_play_goes_on_with_the_other_discs_sectors) {
    const DiscImage disc({audio(16)});
    const DiscImage other({audio(16)});
    load(disc, {"after 3 disc " + other.cue()});
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    Bytes expected = disc.bytes(0, 8);
    const Bytes rest = other.bytes(8, 8);
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(readAll(source), expected);
}

TEST_P(EveryWay, a_drive_that_vanishes_in_mid_play_ends_the_stream) {
    const DiscImage disc({audio(16)});
    load(disc, {"after 2 gone"});
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    EXPECT_EQ(readAll(source), disc.bytes(0, 8));
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), GetParam() == Way::IOCTL ? 0 : 4)
        << "Wine remembers the table of a device that it asked once";
}

TEST_P(EveryWay, a_seek_delivers_the_zeroed_rest_and_then_the_new_place) {
    const DiscImage disc({audio(300)});
    load(disc);
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    Bytes block(9408);
    std::int32_t got = 0;
    ASSERT_EQ(source.Read(block.data(), 8000, got), 0);
    std::int32_t mode = SeekMode::seconds;
    ASSERT_EQ(source.SeekTo(2, mode), 0);
    got = 0;
    ASSERT_EQ(source.Read(block.data(), 9408, got), 0);
    const Bytes place = disc.bytes(150, 4);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 1408), Bytes(1408));
    EXPECT_EQ(Bytes(block.begin() + 1408, block.end()), Bytes(place.begin(), place.end() - 1408));
}

TEST_P(EveryWay, a_percentage_lands_at_a_seventy_fifth_of_its_place) {
    const DiscImage disc({audio(600)});
    load(disc);
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    std::int32_t mode = SeekMode::percent;
    ASSERT_EQ(source.SeekTo(50, mode), 0);
    Bytes block(9408);
    std::int32_t got = 0;
    ASSERT_EQ(source.Read(block.data(), 9408, got), 0);
    EXPECT_EQ(block, disc.bytes(4, 4));
}

TEST_P(EveryWay, a_slow_drive_delivers_the_same) {
    const DiscImage disc({audio(16)});
    load(disc, {"delay-us 20000"});
    expectPlays(d->trackPath(1), disc.bytes(0, 16));
}

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

TEST_F(VirtualDrives, tracks_of_minutes_and_odd_frames_match_their_files) {
    const DiscImage disc({audio(300), data(20), audio(4567)});
    d->load(disc);
    for (int track = 1; track <= 3; ++track) {
        DecCDA source;
        EXPECT_EQ(source.OpenSource(d->trackPath(track)), 0) << track;
    }
}

// Runs a Linux program, as Wine lets a Windows program do; its exit code.
std::optional<DWORD> run(const std::string& commandLine) {
    std::string mutableLine = commandLine;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessA(nullptr, mutableLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &startup, &process))
        return std::nullopt;
    DWORD code = STILL_ACTIVE;
    ::WaitForSingleObject(process.hProcess, 30000);
    ::GetExitCodeProcess(process.hProcess, &code);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return code;
}

TEST_F(VirtualDrives, the_track_files_of_the_tool_open_their_tracks) {
    const DiscImage disc({audio(300), data(20), audio(4567)});
    const std::string tool = "..\\wine\\virtual-drive\\make-track-files ";
    ASSERT_TRUE(run(tool + disc.cue() + " " + e->unixRoot()));
    d->set({"disc " + disc.cue()});
    for (int track = 1; track <= 3; ++track) {
        DecCDA source;
        const std::wstring path = e->trackPath(track);
        // Linux programs run beside Wine, not under it: nobody tells when they are done.
        ASSERT_TRUE(test::pumpUntil([&] { return source.OpenSource(path) == 0; })) << track;
        EXPECT_EQ(source.Duration(), (disc.sectors(track) * 40 + 1) / 3);
        source.CloseSource();
        ::DeleteFileW(path.c_str());
    }
}

} // namespace
} // namespace corvina
