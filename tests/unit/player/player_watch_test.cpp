// What a host sees of a playback while it runs: place, samples and the timed events.

#include "PlaybackFaultsFixture.h"

#include <cstring>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Watch : public PlaybackFaults {
protected:
    Watch() {
        script.moves = true;
        script.data = noise(buffer * 12);
        script.durationMs = 544;
    }

    [[nodiscard]] PlaybackOptions& options() { return host.player.settings().options(); }
    static void playBuffers(int count) {
        for (int i = 0; i < count; ++i) {
            fakeWave.finishOne();
            dispatchWaitingMessages();
        }
    }
    // To the end, so that the device still has the others when one comes back.
    static void playOneByOne() {
        while (fakeWave.finishOne())
            dispatchWaitingMessages();
    }
    static std::vector<UINT> intervals() {
        std::vector<UINT> all;
        for (const auto& [id, timer] : fakeTimers)
            all.push_back(timer.first);
        std::sort(all.begin(), all.end());
        return all;
    }
};

TEST_F(Watch, has_a_timer_while_something_plays) {
    host.player.intervalChanged();
    EXPECT_THAT(fakeTimers, IsEmpty());
    startAndFill();
    EXPECT_THAT(intervals(), ElementsAre(100u)) << "also if no event is to come of it";
    host.player.PlayStop();
    dispatchWaitingMessages();
    tickTimers();
    EXPECT_THAT(fakeTimers, IsEmpty());
}

TEST_F(Watch, has_no_timer_any_longer_when_its_window_or_the_player_is_given_up) {
    startAndFill();
    host.player.windowDestroyed();
    EXPECT_THAT(fakeTimers, IsEmpty());
    ASSERT_EQ(host.init(), 0);
    startAndFill();
    EXPECT_THAT(intervals(), ElementsAre(100u));
    host.player.DeInit();
    EXPECT_THAT(fakeTimers, IsEmpty());
}

TEST_F(Watch, may_be_as_often_as_each_millisecond) {
    options().positionInterval = 1;
    startAndFill();
    EXPECT_THAT(intervals(), ElementsAre(1u, 100u));
    host.progress.clear();
    fakeWave.framesBeyond = 441;
    tickTimers();
    EXPECT_THAT(host.progress, ElementsAre(L"Position 10"));
}

TEST_F(Watch, takes_another_interval_at_once) {
    startAndFill();
    options().positionInterval = 250;
    host.player.intervalChanged();
    EXPECT_THAT(intervals(), ElementsAre(100u, 250u));
    ASSERT_EQ(host.init(), 0); // which sets done
    options().positionInterval = 70;
    host.player.intervalChanged();
    EXPECT_THAT(intervals(), ElementsAre(70u, 100u)) << "as long as the device plays";
}

// So long as no tick comes, a device that is lost is not missed.
TEST_F(Watch, is_kept_several_times_a_second_however_seldom_the_position_is_reported) {
    options().positionInterval = 3600 * 1000;
    startAndFill();
    EXPECT_THAT(intervals(), ElementsAre(100u, 3600000u));
    options().positionInterval = 0;
    host.player.intervalChanged();
    EXPECT_THAT(intervals(), ElementsAre(100u));
}

TEST_F(Watch, sees_a_next_file_begin_between_two_buffers) {
    script.otherData[L"next.test"] = noise(buffer * 10, 7);
    options().nextFile = folder.write(L"next.test", {0});
    startAndFill();
    playBuffers(11);
    host.progress.clear();
    fakeWave.framesBeyond = 1999;
    tickTimers();
    EXPECT_THAT(host.progress, IsEmpty());
    fakeWave.framesBeyond = 2000;
    tickTimers();
    EXPECT_THAT(host.progress, ElementsAre(L"Next next.test"));
}

TEST_F(Watch, says_that_a_next_file_has_begun_before_it_reports_a_place_in_it) {
    script.otherData[L"next.test"] = noise(buffer * 10, 7);
    options().nextFile = folder.write(L"next.test", {0});
    options().positionInterval = 50;
    startAndFill();
    playBuffers(11);
    host.progress.clear();
    fakeWave.framesBeyond = 2000 + 441;
    const auto timers = fakeTimers;
    for (const auto& [id, timer] : timers)
        if (timer.first == 50)
            timer.second(nullptr, WM_TIMER, id, 0);
    EXPECT_THAT(host.progress, ElementsAre(L"Next next.test", L"Position 10"));
}

TEST_F(Watch, knows_the_place_also_of_a_playback_over_which_Init_was_called) {
    startAndFill();
    fakeWave.framesBeyond = 441;
    ASSERT_EQ(host.init(), 0);
    EXPECT_TRUE(host.player.DonePlay());
    EXPECT_EQ(host.player.PositionMs(), 10);
}

TEST_F(Watch, does_not_count_what_is_heard_behind_the_end_of_a_short_file) {
    script.data = noise(44 * 4);
    script.durationMs = 1;
    startAndFill();
    EXPECT_EQ(host.player.PositionMs(), 0);
    fakeWave.framesBeyond = 441;
    EXPECT_EQ(host.player.PositionMs(), 1);
    options().positionInterval = 50;
    host.player.intervalChanged();
    host.progress.clear();
    tickTimers();
    EXPECT_THAT(host.progress, ElementsAre(L"Position 1"));
}

TEST_F(Watch, sees_the_samples_that_were_sent_last_until_the_end) {
    script.format = pcm(22050, 2, 16);
    SampleBlock block;
    EXPECT_FALSE(host.player.latestSamples(block));
    ASSERT_EQ(start(), 0);
    EXPECT_FALSE(host.player.latestSamples(block)) << "nothing was sent yet";
    dispatchWaitingMessages();
    playBuffers(2);
    ASSERT_TRUE(host.player.latestSamples(block));
    EXPECT_EQ(block.sampleRate, 22050);
    EXPECT_EQ(block.channels, 2);
    ASSERT_EQ(block.samples.size(), buffer / 2);
    EXPECT_EQ(std::memcmp(block.samples.data(), script.data.data() + 9 * buffer, buffer), 0);
    playOut();
    EXPECT_FALSE(host.player.latestSamples(block));
}

TEST_F(Watch, of_a_jump_back_from_the_last_blocks_sees_the_rest_again_and_one_end) {
    startAndFill();
    playBuffers(7);
    ASSERT_EQ(stateLog.back(), "draining");
    fakeWave.written.clear();
    host.player.setPositionMs(100);
    EXPECT_EQ(host.player.PositionMs(), 100);
    playOneByOne();
    const auto from = script.data.begin() + 4410 * 4;
    ASSERT_GE(fakeWave.written.size(), buffer * 12 - 4410 * 4);
    EXPECT_TRUE(std::equal(from, script.data.end(), fakeWave.written.begin()));
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_FALSE(fakeWave.open);
}

TEST_F(Watch, of_a_jump_sees_all_eight_buffers_come_back_at_the_end) {
    startAndFill();
    host.player.setPositionMs(100);
    playOneByOne();
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_FALSE(fakeWave.open);
}

TEST_F(Watch, of_a_clean_end_in_8_bits_hears_silence) {
    options().cleanEnd = true;
    script.format = pcm(8000, 1, 8);
    script.data = noise(buffer + 1000);
    startAndFill();
    playOut();
    ASSERT_EQ(fakeWave.written.size(), 2 * buffer);
    EXPECT_EQ(Bytes(fakeWave.written.begin() + buffer + 1000, fakeWave.written.end()),
              Bytes(buffer - 1000, 0x80));
}

} // namespace
} // namespace corvina::test
