// Ended, StateChanged and State, over all ways in which a playback can end.

#include "PlaybackFaultsFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Life : public PlaybackFaults {
protected:
    Life() { host.progress.clear(); }

    [[nodiscard]] long ends() const {
        return std::count_if(host.progress.begin(), host.progress.end(),
                             [](const std::wstring& event) { return event.starts_with(L"Ended"); });
    }
};

TEST_F(Life, of_a_file_that_plays_to_its_end) {
    EXPECT_EQ(host.player.State(), PLAY_STOPPED);
    startAndFill();
    EXPECT_EQ(host.player.State(), PLAY_PLAYING);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1"));
    bool doneBeforeEnded = false;
    host.onProgress = [&](const std::wstring& event) {
        if (event == L"Ended 0")
            doneBeforeEnded = host.countOf(L"DonePlay") == 1;
    };
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_TRUE(doneBeforeEnded);
    EXPECT_EQ(host.player.State(), PLAY_STOPPED);
}

TEST_F(Life, of_a_playback_that_is_stopped) {
    startAndFill();
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 1"));
}

TEST_F(Life, over_a_pause) {
    startAndFill();
    host.player.PlayPause();
    EXPECT_EQ(host.player.State(), PLAY_PAUSED);
    host.player.PlayPause();
    host.player.PlayUnPause();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 2", L"State 1"));
}

TEST_F(Life, does_not_begin_where_a_start_fails) {
    fakeWave.faults.arm("waveOutOpen", 1);
    EXPECT_NE(start(), 0);
    fakeWave.faults.arm("waveOutPrepareHeader", 4);
    EXPECT_NE(start(), 0);
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, IsEmpty());
}

TEST_F(Life, of_a_start_whose_messages_are_refused_ends) {
    windowFaults.arm("PostMessage", 1);
    EXPECT_EQ(start(), 0);
    windowFaults.disarm();
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
}

TEST_F(Life, ends_with_DeInit_where_DonePlay_does_not_come) {
    startAndFill();
    host.player.DeInit();
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 1"));
}

TEST_F(Life, ends_with_the_window) {
    startAndFill();
    host.player.windowDestroyed();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 1"));
}

TEST_F(Life, ends_with_an_error_where_a_buffer_was_lost_and_DonePlay_never_comes) {
    script.data = noise(buffer * 20);
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 3);
    dispatchWaitingMessages();
    playOut();
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 3"));
    host.player.DeInit();
    EXPECT_EQ(ends(), 1);
}

TEST_F(Life, ends_once_where_the_device_does_not_close) {
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1);
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 3"));
    fakeWave.faults.arm("waveOutOpen", 1);
    EXPECT_NE(start(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    EXPECT_EQ(ends(), 1);
}

TEST_F(Life, ends_with_an_error_where_something_is_thrown) {
    startAndFill();
    script.onRead = [] { throwOverflow(); };
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 3"));
}

TEST_F(Life, of_two_playbacks_of_which_the_second_is_stopped_by_the_firsts_close_message) {
    playUntilClosed();
    ASSERT_EQ(start(), 0);
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Ended 1", L"State 0", L"Ended 1"));
}

TEST_F(Life, of_a_playback_begun_in_the_Err_before_DonePlay_ends_as_stopped) {
    bool started = false;
    host.onErr = [&](const std::wstring&) {
        if (!std::exchange(started, true)) {
            EXPECT_EQ(start(), 0);
        }
    };
    startAndFill();
    playOut();
    EXPECT_TRUE(started);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Ended 0", L"State 0", L"Ended 1"));
}

TEST_F(Life, of_the_playback_after_one_that_lost_a_buffer_ends_as_ever) {
    script.data = noise(buffer * 10);
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 3);
    dispatchWaitingMessages();
    host.player.DeInit();
    ASSERT_EQ(host.init(), 0);
    host.progress.clear();
    startAndFill();
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.events.back(), L"DonePlay");
}

TEST_F(Life, goes_on_with_a_start_inside_Ended) {
    int starts = 0;
    host.onProgress = [&](const std::wstring& event) {
        if (event == L"Ended 0" && ++starts < 3) {
            EXPECT_EQ(start(), 0);
        }
    };
    startAndFill();
    for (int i = 0; i < 3; ++i)
        playOut();
    EXPECT_EQ(starts, 3);
    EXPECT_EQ(ends(), 3);
    EXPECT_EQ(host.countOf(L"DonePlay"), 3);
}

TEST_F(Life, forged_close_messages_do_not_end_it) {
    startAndFill();
    ::SendMessageA(host.window.handle(), MM_WOM_CLOSE, 0, 0);
    EXPECT_EQ(ends(), 0);
    playOut();
    EXPECT_EQ(ends(), 1);
}

class LostDevice : public Life {
protected:
    // What a host's loop does that handles only some messages.
    void dropReturnedBuffers() const {
        MSG dropped{};
        while (
            ::PeekMessageW(&dropped, host.window.handle(), MM_WOM_DONE, MM_WOM_DONE, PM_REMOVE)) {
        }
    }
    // As long as it takes, and a little more.
    static void watch() {
        tickTimers();
        ::Sleep(870);
        tickTimers();
    }
};

TEST_F(LostDevice, ends_the_playback_within_a_second_and_the_next_one_works) {
    startAndFill();
    watch();
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(LostDevice, is_not_one_that_plays_slowly_or_is_paused) {
    startAndFill();
    for (int i = 0; i < 3; ++i) {
        fakeWave.framesBeyond += 100;
        watch();
    }
    host.player.PlayPause();
    watch();
    EXPECT_EQ(ends(), 0);
    host.player.PlayUnPause();
    tickTimers();
    EXPECT_EQ(ends(), 0);
}

TEST_F(LostDevice, is_not_one_that_has_just_gone_on_after_a_pause) {
    startAndFill();
    tickTimers();
    host.player.PlayPause();
    ::Sleep(870);
    host.player.PlayUnPause();
    tickTimers();
    dispatchWaitingMessages();
    EXPECT_EQ(ends(), 0);
}

TEST_F(LostDevice, is_not_one_that_returns_buffers_but_does_not_say_where_it_is) {
    startAndFill();
    fakeWave.faults.arm("waveOutGetPosition", 1, forever);
    tickTimers();
    ::Sleep(870);
    fakeWave.finishOne();
    dispatchWaitingMessages();
    tickTimers();
    dispatchWaitingMessages();
    EXPECT_EQ(ends(), 0);
}

TEST_F(LostDevice, is_noticed_while_paused_if_it_does_not_respond) {
    startAndFill();
    host.player.PlayPause();
    fakeWave.faults.arm("waveOutGetPosition", 1, forever);
    watch();
    dispatchWaitingMessages();
    EXPECT_EQ(host.progress.back(), L"Ended 2");
}

TEST_F(LostDevice, that_refuses_every_buffer_ends_the_playback) {
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 1, forever, MMSYSERR_NODRIVER);
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    expectTheNextPlaybackWorks();
}

TEST_F(LostDevice, that_does_not_close_either_ends_the_playback_with_DonePlay) {
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1);
    watch();
    dispatchWaitingMessages();
    EXPECT_EQ(host.progress.back(), L"Ended 2");
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    fakeWave.open = false;
    fakeWave.queued.clear();
    expectTheNextPlaybackWorks();
}

TEST_F(LostDevice,
       is_not_one_whose_last_messages_are_lost_by_the_host_but_Ended_and_DonePlay_come) {
    startAndFill();
    host.player.PlayStop();
    dropReturnedBuffers();
    watch();
    dispatchWaitingMessages();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 1"));
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(LostDevice, that_keeps_a_refused_buffer_is_still_not_closed) {
    script.data = noise(buffer * 20);
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 3);
    dispatchWaitingMessages();
    playOut();
    watch();
    dispatchWaitingMessages();
    EXPECT_TRUE(fakeWave.open);
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    EXPECT_EQ(ends(), 1);
}

TEST_F(LostDevice, is_replaced_by_the_systems_choice_with_Recover) {
    host.player.settings().options().recovers = true;
    script.moves = true;
    script.data = noise(176400 * 4);
    ASSERT_EQ(start(0), 0);
    dispatchWaitingMessages();
    while (fakeWave.finishedFrames < 46000) {
        fakeWave.finishOne();
        dispatchWaitingMessages();
    }
    fakeWave.written.clear();
    const std::int32_t heardMs = host.player.PositionMs();
    EXPECT_NEAR(heardMs, 1043, 46);
    watch();
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    EXPECT_EQ(host.player.PositionMs(), heardMs);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1"));
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    const auto from = static_cast<std::ptrdiff_t>(heardMs * 44100LL / 1000 * 4);
    EXPECT_TRUE(
        std::equal(script.data.begin() + from, script.data.end(), fakeWave.written.begin()));
}

TEST_F(LostDevice, ends_the_playback_if_Recover_finds_no_other) {
    host.player.settings().options().recovers = true;
    startAndFill();
    fakeWave.faults.arm("waveOutOpen", 1, forever);
    watch();
    dispatchWaitingMessages();
    EXPECT_EQ(host.progress.back(), L"Ended 2");
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

} // namespace
} // namespace corvina::test
