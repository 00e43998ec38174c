// Tracks of virtual discs played through the registered control and heard sample by sample.

#include "support/PlayerHost.h"
#include "support/Recording.h"
#include "support/VirtualDrive.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>

namespace corvina::test {
namespace {

Frames framesOf(const Bytes& bytes) {
    Frames frames(bytes.size() / sizeof(Frame));
    std::memcpy(frames.data(), bytes.data(), frames.size() * sizeof(Frame));
    return frames;
}

class CdPlayback : public testing::Test {
protected:
    void SetUp() override {
        if (!recording.available())
            GTEST_SKIP() << "CORVINA_HEARD names no recording";
        if (!VirtualDrive::exists('d') || !VirtualDrive::exists('e'))
            GTEST_SKIP() << "the stage has no two virtual CD drives";
        d.emplace('d');
        e.emplace('e');
        // Its tracks end where the converter's pieces and the ring's blocks do not.
        disc.emplace(
            std::vector<DiscTrack>{{false, 8}, {true, 32}, {true, 33}, {true, 8}, {false, 8}});
    }

    // Expects that exactly these sectors of the disc are heard when the track is played.
    void expectHeard(const std::wstring& path, std::int32_t lba, std::int32_t sectors) {
        const Frames expected = framesOf(disc->bytes(lba, sectors));
        const std::size_t before = recording.now();
        PlayerHost host;
        ASSERT_EQ(host.start(path), 0);
        ASSERT_TRUE(host.waitForDone());
        const Frames heard = withoutSilenceBehind(recording.listen(before, expected.size(), 5s));
        EXPECT_EQ(heard.size(), expected.size());
        EXPECT_EQ(firstDifference(expected, heard), std::nullopt);
    }

    Recording recording;
    std::optional<VirtualDrive> d;
    std::optional<VirtualDrive> e;
    std::optional<DiscImage> disc;
};

TEST_F(CdPlayback, through_pass_through_is_heard_bit_for_bit) {
    d->load(*disc);
    expectHeard(d->trackPath(2), disc->start(2), 32);
    const auto requests = d->requests();
    EXPECT_NE(std::find(requests.begin(), requests.end(),
                        "SG_IO BE 00 00 00 00 08 00 00 04 F8 00 00 9408"),
              requests.end());
}

TEST_F(CdPlayback, through_device_io_control_is_heard_bit_for_bit) {
    d->load(*disc, {"read-only"});
    e->set({"read-only"});
    expectHeard(d->trackPath(2), disc->start(2), 32);
    const auto requests = d->requests();
    EXPECT_NE(std::find(requests.begin(), requests.end(), "CDROMREADAUDIO 8 4"), requests.end());
}

TEST_F(CdPlayback, through_aspi_is_heard_bit_for_bit) {
    d->load(*disc, {"absent"});
    e->set({"absent"});
    // Its device is absent, but the folder with its track files is there.
    expectHeard(d->trackPath(2), disc->start(2), 32);
    const auto requests = d->requests();
    EXPECT_NE(std::find(requests.begin(), requests.end(),
                        "ASPI BE 00 00 00 00 08 00 00 04 F8 00 00 9408"),
              requests.end());
}

TEST_F(CdPlayback, the_beginning_of_the_next_track_is_heard_at_the_end) {
    d->load(*disc);
    expectHeard(d->trackPath(3), disc->start(3), 36);
}

TEST_F(CdPlayback, a_slow_drive_is_heard_without_a_gap) {
    d->load(*disc, {"delay-us 6900"});
    expectHeard(d->trackPath(2), disc->start(2), 32);
}

TEST_F(CdPlayback, the_control_tells_a_tracks_format_and_length) {
    const DiscImage minute({{true, 60 * 75}});
    d->load(minute);
    PlayerHost host;
    ASSERT_EQ(host.start(d->trackPath(1)), 0);
    EXPECT_EQ(host.duration(), 60.0);
    ASSERT_EQ(host.stop(), 0);
    EXPECT_TRUE(host.waitForDone());
}

TEST_F(CdPlayback, a_drive_that_vanishes_ends_the_playback) {
    d->load(*disc, {"after 3 gone"});
    expectHeard(d->trackPath(2), disc->start(2), 12);
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
