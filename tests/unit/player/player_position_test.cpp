// The position in milliseconds, jumps, loops and files that follow each other, on a device that
// says what it has played.

#include "PlaybackFaultsFixture.h"
#include "support/ErrorNumber.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t second = 176400;

std::ptrdiff_t byteAt(std::int64_t milliseconds) {
    return static_cast<std::ptrdiff_t>(milliseconds * 44100 / 1000 * 4);
}

std::int64_t msOfFrames(std::int64_t frames) {
    return (frames * 1000 + 22050) / 44100;
}

class PlayerPosition : public PlaybackFaults {
protected:
    PlayerPosition() {
        script.moves = true;
        script.data = noise(second * 4);
        script.durationMs = 4000;
    }

    [[nodiscard]] PlaybackOptions& options() { return host.player.settings().options(); }
    // The device plays until it has played so many frames since the last reset.
    static void playFrames(std::int64_t frames) {
        while (fakeWave.finishedFrames < frames && fakeWave.finishOne())
            dispatchWaitingMessages();
    }
};

TEST_F(PlayerPosition, is_0_when_nothing_plays_and_the_duration_is_the_opened_files) {
    EXPECT_EQ(host.player.PositionMs(), 0);
    EXPECT_EQ(host.player.DurationMs(), 0);
    host.player.OpenAudioFile(file);
    EXPECT_EQ(host.player.PositionMs(), 0);
    EXPECT_EQ(host.player.DurationMs(), 4000);
}

TEST_F(PlayerPosition, is_what_the_device_has_played_and_not_what_was_read) {
    startAndFill();
    EXPECT_EQ(host.player.PositionMs(), 0);
    playFrames(20000);
    fakeWave.framesBeyond = 441;
    EXPECT_EQ(host.player.PositionMs(), msOfFrames(fakeWave.finishedFrames + 441));
}

TEST_F(PlayerPosition, set_drops_what_is_queued_and_goes_on_at_that_millisecond) {
    startAndFill();
    playFrames(20000);
    fakeWave.written.clear();
    host.player.setPositionMs(2345);
    ASSERT_GE(fakeWave.written.size(), 8 * buffer) << "before any message is handled";
    EXPECT_EQ(host.player.PositionMs(), 2345);
    EXPECT_TRUE(std::equal(script.data.begin() + byteAt(2345),
                           script.data.begin() + byteAt(2345) + 8 * buffer,
                           fakeWave.written.begin()));
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerPosition, set_while_paused_stays_paused) {
    startAndFill();
    host.player.PlayPause();
    host.player.setPositionMs(1500);
    EXPECT_TRUE(fakeWave.paused);
    fakeWave.framesBeyond = 800; // a device may count what it has fetched
    EXPECT_EQ(host.player.PositionMs(), 1500);
    fakeWave.framesBeyond = 0;
    EXPECT_EQ(host.player.State(), PLAY_PAUSED);
    host.player.PlayUnPause();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlayerPosition, set_back_while_the_last_blocks_play_begins_to_feed_again) {
    script.data = noise(second);
    script.durationMs = 1000;
    startAndFill();
    while (stateLog.back() != "draining" && fakeWave.finishOne())
        dispatchWaitingMessages();
    for (int i = 0; i < 3; ++i)
        fakeWave.finishOne();
    dispatchWaitingMessages();
    fakeWave.written.clear();
    host.player.setPositionMs(500);
    EXPECT_EQ(stateLog.back(), "feeding");
    dispatchWaitingMessages();
    EXPECT_GE(fakeWave.written.size(), 8 * buffer);
    playOut();
    EXPECT_TRUE(
        std::equal(script.data.begin() + byteAt(500), script.data.end(), fakeWave.written.begin()));
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

// The half second that the converter has read, and the device has in part, plays out first.
TEST_F(PlayerPosition, is_that_which_PositionSet_has_set_from_when_it_is_heard) {
    script.data = noise(second * 10);
    script.durationMs = 10000;
    startAndFill();
    const std::int64_t before = static_cast<std::int64_t>(second) / 2 / 4;
    ASSERT_EQ(host.player.PositionSet(7), 0);
    playFrames(before - 2000);
    EXPECT_EQ(host.player.PositionMs(), msOfFrames(fakeWave.finishedFrames));
    playFrames(before + 20000);
    EXPECT_EQ(host.player.PositionMs(), 7000 + msOfFrames(fakeWave.finishedFrames - before));
}

TEST_F(PlayerPosition, is_that_which_PositionSet_has_set_before_the_first_message) {
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(host.player.PositionSet(2), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.player.PositionMs(), 2000);
    playFrames(20000);
    EXPECT_EQ(host.player.PositionMs(), 2000 + msOfFrames(fakeWave.finishedFrames));
}

TEST_F(PlayerPosition, out_of_range_raises_380_with_the_range_and_changes_nothing) {
    startAndFill();
    fakeWave.log.clear();
    for (const std::int32_t value : {-1, 4001, INT32_MAX, INT32_MIN})
        try {
            host.player.setPositionMs(value);
            ADD_FAILURE() << value;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 380);
            EXPECT_EQ(error.text(), L"PositionMs must be from 0 to 4000");
        }
    EXPECT_THAT(fakeWave.log, IsEmpty());
}

TEST_F(PlayerPosition, of_a_source_that_cannot_be_moved_raises_5_and_plays_on) {
    startAndFill();
    script.seekResult = SourceResult::notOpen;
    EXPECT_EQ(errorNumberOf([&] { host.player.setPositionMs(2000); }), 5);
    EXPECT_EQ(callsOf("Reset"), 0);
}

TEST_F(PlayerPosition, is_reported_at_the_interval_while_it_plays) {
    host.player.settings().setPositionInterval(50);
    startAndFill();
    ASSERT_EQ(fakeTimers.size(), 2u);
    EXPECT_EQ(std::min(fakeTimers.begin()->second.first, fakeTimers.rbegin()->second.first), 50u);
    host.progress.clear();
    fakeWave.framesBeyond = 441;
    tickTimers();
    EXPECT_THAT(host.progress, ElementsAre(L"Position 10"));
    host.player.PlayPause();
    host.progress.clear();
    tickTimers();
    EXPECT_THAT(host.progress, IsEmpty());
    host.player.settings().setPositionInterval(0);
    host.player.intervalChanged();
    host.player.PlayUnPause();
    host.progress.clear();
    tickTimers();
    EXPECT_THAT(host.progress, IsEmpty());
}

TEST_F(PlayerPosition, of_a_loop_begins_again_without_a_gap) {
    options().loops = true;
    script.data = noise(buffer * 3 + 1236);
    script.durationMs = 0;
    startAndFill();
    playFrames(60000);
    const std::size_t length = script.data.size();
    for (std::size_t i = 0; i < fakeWave.written.size(); ++i)
        ASSERT_EQ(fakeWave.written[i], script.data[i % length]) << i;
    const auto frames = static_cast<std::int64_t>(length / 4);
    EXPECT_EQ(host.player.PositionMs(), msOfFrames(fakeWave.finishedFrames % frames));
    options().loops = false;
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlayerPosition, of_a_loop_without_sound_ends) {
    options().loops = true;
    script.data.clear();
    startAndFill();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlayerPosition, of_the_next_file_counts_from_its_first_frame) {
    const Bytes next = noise(second, 7);
    script.data = noise(second + 404);
    script.otherData[L"next.test"] = next;
    options().nextFile = folder.write(L"next.test", {0});
    startAndFill();
    playOut();
    Bytes both = script.data;
    both.insert(both.end(), next.begin(), next.end());
    ASSERT_GE(fakeWave.written.size(), both.size());
    EXPECT_TRUE(std::equal(both.begin(), both.end(), fakeWave.written.begin()));
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.test", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_EQ(fakeWave.opens, 1);
}

TEST_F(PlayerPosition, of_a_next_file_is_taken_over_when_it_is_heard) {
    script.data = noise(second);
    script.otherData[L"next.test"] = noise(second, 7);
    const std::wstring next = folder.write(L"next.test", {0});
    options().nextFile = next;
    startAndFill();
    playFrames(40000);
    EXPECT_EQ(host.player.NextFile(), next) << "it is queued, but not heard";
    EXPECT_NEAR(host.player.PositionMs(), 907, 46);
    playFrames(48000);
    EXPECT_EQ(host.player.NextFile(), L"");
    EXPECT_EQ(host.player.PositionMs(), msOfFrames(fakeWave.finishedFrames - 44100));
}

TEST_F(PlayerPosition, set_back_before_the_next_file_is_heard_leaves_it_the_next) {
    script.data = noise(second);
    script.durationMs = 1000;
    script.otherData[L"next.test"] = noise(second, 7);
    const std::wstring next = folder.write(L"next.test", {0});
    options().nextFile = next;
    startAndFill();
    playFrames(40000);
    host.player.setPositionMs(0);
    EXPECT_EQ(options().nextFile, next);
    fakeWave.written.clear();
    playOut();
    EXPECT_EQ(std::count(host.progress.begin(), host.progress.end(), L"Next next.test"), 1);
}

TEST_F(PlayerPosition, a_next_file_of_another_format_gets_a_device_of_its_own) {
    script.data = noise(second);
    script.otherData[L"next.test"] = noise(44100, 7);
    script.otherFormats[L"next.test"] = pcm(22050, 1, 16);
    options().nextFile = folder.write(L"next.test", {0});
    startAndFill();
    playOut();
    fakeWave.written.clear();
    playOut();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 22050u);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.test", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.events, endOfPlayback) << "one end for both";
}

TEST_F(PlayerPosition, a_next_file_that_cannot_be_opened_is_reported_and_the_playback_ends) {
    script.data = noise(second);
    options().nextFile = L"missing.test";
    startAndFill();
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"NextFile|1|File doen't exist",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_EQ(host.player.NextFile(), L"");
}

TEST_F(PlayerPosition, a_next_file_stays_the_next_if_the_playback_is_stopped_before) {
    script.data = noise(second);
    script.otherData[L"next.test"] = noise(second, 7);
    const std::wstring next = folder.write(L"next.test", {0});
    options().nextFile = next;
    startAndFill();
    playFrames(40000);
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_EQ(host.player.NextFile(), next);
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlayerPosition, with_CleanEnd_the_last_block_ends_in_silence) {
    options().cleanEnd = true;
    script.data = noise(buffer * 9 + 4000);
    startAndFill();
    playOut();
    ASSERT_EQ(fakeWave.written.size(), 10 * buffer);
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    EXPECT_TRUE(std::all_of(fakeWave.written.begin() + 9 * buffer + 4000, fakeWave.written.end(),
                            [](std::uint8_t byte) { return byte == 0; }));
}

TEST_F(PlayerPosition, another_file_opened_in_mid_play_leaves_what_is_heard_alone) {
    startAndFill();
    script.otherData[L"other.test"] = noise(second, 9);
    EXPECT_EQ(host.player.OpenAudioFile(folder.write(L"other.test", {0})), 0);
    EXPECT_EQ(script.sources, 2) << "each has its own source";
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_EQ(script.sources, 1);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerPosition, a_device_is_found_by_its_name) {
    options().device = L"no such device";
    EXPECT_EQ(start(-1), MMSYSERR_BADDEVICEID);
    EXPECT_EQ(fakeWave.opens, 0);
    EXPECT_EQ(start(3), 0) << "a number is not looked up";
    EXPECT_EQ(fakeWave.device, 3u);
}

} // namespace
} // namespace corvina::test
