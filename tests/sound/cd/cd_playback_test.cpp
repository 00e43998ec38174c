// Tracks of virtual discs played through the registered control and heard sample by sample.

#include "DriveSoundTest.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace corvina::test {
namespace {

constexpr std::ptrdiff_t framesInSector = 588;

Frames framesOf(const Bytes& bytes) {
    Frames frames(bytes.size() / sizeof(Frame));
    std::memcpy(frames.data(), bytes.data(), frames.size() * sizeof(Frame));
    return frames;
}

class CdPlayback : public DriveSoundTest {
protected:
    void SetUp() override {
        DriveSoundTest::SetUp();
        if (IsSkipped())
            return;
        // Its tracks end where the converter's pieces and the ring's blocks do not.
        disc.emplace(
            std::vector<DiscTrack>{{false, 8}, {true, 32}, {true, 33}, {true, 8}, {false, 8}});
    }

    // Expects that these sectors of the disc are heard when the track is played. Behind them comes
    // what is left in the player's last block. Before each playback the drive is described anew.
    void expectSectors(int track, std::int32_t sectors,
                       const std::vector<std::string>& lines = {}) {
        const Frames expected = framesOf(disc->bytes(disc->start(track), sectors));
        expectRecorded(expected, [&] {
            d->load(*disc, lines);
            return playWhole(d->trackPath(track), expected.size());
        });
    }
    [[nodiscard]] bool wasAsked(const std::string& request) const {
        const auto requests = d->requests();
        return std::find(requests.begin(), requests.end(), request) != requests.end();
    }

    std::optional<DiscImage> disc;
};

TEST_F(CdPlayback, through_pass_through_is_heard_bit_for_bit) {
    expectSectors(2, 32);
    EXPECT_TRUE(wasAsked("SG_IO BE 00 00 00 00 08 00 00 04 F8 00 00 9408"));
}

TEST_F(CdPlayback, through_device_io_control_is_heard_bit_for_bit) {
    e->set({"read-only"});
    expectSectors(2, 32, {"read-only"});
    EXPECT_TRUE(wasAsked("CDROMREADAUDIO 8 4"));
}

// The drives' devices are absent, but the folders with the track files are there.
TEST_F(CdPlayback, through_aspi_is_heard_bit_for_bit) {
    e->set({"absent"});
    expectSectors(2, 32, {"absent"});
    EXPECT_TRUE(wasAsked("ASPI BE 00 00 00 00 08 00 00 04 F8 00 00 9408"));
}

TEST_F(CdPlayback, the_beginning_of_the_next_track_is_heard_at_the_end) {
    expectSectors(3, 36);
}

TEST_F(CdPlayback, a_slow_drive_is_heard_without_a_gap) {
    expectSectors(2, 32, {"delay-us 6900"});
}

TEST_F(CdPlayback, a_drive_that_vanishes_ends_the_playback) {
    expectSectors(2, 12, {"after 3 gone"});
}

TEST_F(CdPlayback, a_disc_that_is_taken_out_ends_the_playback_through_device_io_control) {
    e->set({"read-only"});
    expectSectors(2, 12, {"read-only", "after 4 tray open"});
}

TEST_F(CdPlayback, a_disc_that_is_taken_out_leaves_the_track_silent_through_pass_through) {
    const Frames sound = framesOf(disc->bytes(disc->start(2), 12));
    Frames heard;
    expectExactPlayback([&] {
        d->load(*disc, {"after 4 tray open"});
        heard = playWhole(d->trackPath(2), sound.size());
        return compare(sound, heard);
    });
    ASSERT_GE(heard.size(), 32u * framesInSector);
    // Behind the track comes what is left in the player's last block.
    const Frames track(heard.begin(), heard.begin() + 32 * framesInSector);
    EXPECT_EQ(withoutSilenceBehind(track).size(), sound.size());
    EXPECT_TRUE(wasAsked("SG_IO BE 00 00 00 00 24 00 00 04 F8 00 00 9408")) << "the track's end";
}

TEST_F(CdPlayback, a_track_is_heard_from_a_position_set_before_its_first_sector_was_read) {
    // Two seconds are 150 sectors; the 50 behind them are read in 13 blocks of four.
    const DiscImage longer({{true, 8}, {true, 200}, {true, 8}});
    const Frames expected = framesOf(longer.bytes(longer.start(2) + 150, 52));
    expectRecorded(expected, [&] {
        d->load(longer);
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(d->trackPath(2)), 0);
        EXPECT_EQ(host.seek(2), 0);
        EXPECT_EQ(host.position(), 2);
        EXPECT_TRUE(host.waitForDone());
        return recording.listen(before, expected.size(), 5s);
    });
}

// The rest of the block that was being delivered comes as silence, which is left out here.
TEST_F(CdPlayback, a_position_set_in_the_middle_is_heard_behind_what_was_queued) {
    const DiscImage longer({{true, 450}});
    const Frames whole = framesOf(longer.bytes(longer.start(1), 450));
    const Frames rest = framesOf(longer.bytes(longer.start(1) + 5 * 75, 75));
    expectExactPlayback([&] {
        d->load(longer);
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(d->trackPath(1)), 0);
        EXPECT_TRUE(pumpUntil([&] { return recording.soundSince(before).has_value(); }));
        EXPECT_EQ(host.seek(5), 0);
        EXPECT_TRUE(host.waitForDone());

        const Jump jump = compareAcrossJump(whole, rest, recording.listenUntilQuiet(before, 5s));
        EXPECT_LT(jump.at, 3 * 44100u);
        return jump.behind;
    });
}

TEST_F(CdPlayback, the_control_reports_a_tracks_format_and_length) {
    const DiscImage minute({{true, 60 * 75}});
    d->load(minute);
    PlayerHost host;
    ASSERT_EQ(host.start(d->trackPath(1)), 0);
    EXPECT_EQ(host.duration(), 60.0);
    ASSERT_EQ(host.stop(), 0);
    EXPECT_TRUE(host.waitForDone());
}

TEST_F(CdPlayback, a_track_of_no_disc_does_not_start) {
    d->load(*disc);
    const std::wstring path = d->trackPath(2);
    d->set({});
    PlayerHost host;
    EXPECT_EQ(host.start(path), 3);
    EXPECT_FALSE(host.isPlaying());
}

} // namespace
} // namespace corvina::test
