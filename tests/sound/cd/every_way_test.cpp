// What CD access through the system's own request path does alike with all three backends.

#include "VirtualDrivesFixture.h"

namespace corvina::test {
namespace {

enum class Way { spti, ioctl, aspi };

class EveryWay : public VirtualDrives, public testing::WithParamInterface<Way> {
protected:
    // What the drives must be like for the manager to end up with this backend.
    [[nodiscard]] std::vector<std::string> lines(std::vector<std::string> more = {}) const {
        if (GetParam() == Way::ioctl)
            more.emplace_back("read-only");
        if (GetParam() == Way::aspi)
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
    case Way::spti:
        return "SPTI";
    case Way::ioctl:
        return "IOCTL";
    default:
        return "ASPI";
    }
}

INSTANTIATE_TEST_SUITE_P(Backends, EveryWay, testing::Values(Way::spti, Way::ioctl, Way::aspi),
                         wayName);

TEST_P(EveryWay, lists_both_drives) {
    const DiscImage disc({audio(8)});
    load(disc);
    DecCDA source;
    EXPECT_EQ(source.DeviceCount(), 2);
    EXPECT_TRUE(source.SelectDevice(1));
    EXPECT_FALSE(source.SelectDevice(2));
    const std::wstring name =
        GetParam() == Way::ioctl ? L"Generic CD-ROM drive v1" : L"CORVINA  VIRTUAL DRIVE    1.0 ";
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

// A drive that refuses a command has still answered the request, and that is all that pass-through
// looks at. The others see the failure.
TEST_P(EveryWay, a_disc_that_is_taken_out_in_mid_track_ends_it_or_leaves_it_silent) {
    const DiscImage disc({audio(16)});
    // The third read already finds the tray open.
    load(disc, {"after 3 tray open"});
    DecCDA source;
    ASSERT_EQ(source.OpenSource(d->trackPath(1)), 0);
    const Bytes all = readAll(source);
    Bytes expected = disc.bytes(0, 8);
    if (GetParam() == Way::spti)
        expected.resize(16 * 2352, 0);
    EXPECT_EQ(all, expected);
    EXPECT_EQ(source.EndOfStream(), GetParam() == Way::spti);
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
    EXPECT_EQ(source.OpenSource(d->trackPath(1)), GetParam() == Way::ioctl ? 0 : 4)
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

} // namespace
} // namespace corvina::test
