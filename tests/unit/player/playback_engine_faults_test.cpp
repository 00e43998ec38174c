// The playback engine when a call of the device or of the window fails.

#include "PlaybackFaultsFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

TEST_F(PlaybackFaults, a_device_that_cannot_be_opened_is_the_result_without_an_event) {
    fakeWave.faults.arm("waveOutOpen", 1, once, MMSYSERR_BADDEVICEID);
    EXPECT_EQ(start(99), MMSYSERR_BADDEVICEID);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, IsEmpty());
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(fakeAcm.openStreams, 1) << "the converter stays until the next start or stop";
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_buffer_that_cannot_be_prepared_is_the_result_and_closes_the_device) {
    for (int nth = 1; nth <= 8; ++nth) {
        SCOPED_TRACE(nth);
        fakeWave.faults.arm("waveOutPrepareHeader", nth, once, MMSYSERR_NOMEM);
        host.events.clear();
        EXPECT_EQ(start(), MMSYSERR_NOMEM);
        EXPECT_FALSE(fakeWave.open);
        EXPECT_EQ(fakeWave.prepared.size(), 0u);
        dispatchWaitingMessages();
        EXPECT_THAT(host.events, IsEmpty()) << "nothing played, so nothing has ended";
        EXPECT_FALSE(host.player.IsPlaying());
    }
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_refused_post_returns_its_0_and_the_playback_ends_at_once) {
    for (int nth = 1; nth <= 8; ++nth) {
        SCOPED_TRACE(nth);
        windowFaults.arm("PostMessage", nth);
        host.events.clear();
        EXPECT_EQ(start(), 0);
        EXPECT_TRUE(host.player.IsPlaying());
        windowFaults.disarm();
        dispatchWaitingMessages();
        EXPECT_EQ(host.events, endOfPlayback);
        EXPECT_FALSE(host.player.IsPlaying());
        EXPECT_EQ(fakeWave.writes, 0);
    }
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_post_that_returns_another_number_is_the_result) {
    windowFaults.arm("PostMessage", 5, once, 1400);
    EXPECT_EQ(start(), 1400);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, IsEmpty());
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, messages_of_a_failed_start_fill_no_buffer_of_the_next) {
    windowFaults.arm("PostMessage", 5, once, 1400);
    ASSERT_EQ(start(), 1400);
    startAndFill();
    EXPECT_EQ(fakeWave.queued.size(), 8u);
    EXPECT_THAT(host.events, IsEmpty()) << "a ninth buffer is not filled";
}

TEST_F(PlaybackFaults, a_failed_start_leaves_the_close_message_of_the_playback_before) {
    playUntilClosed();
    fakeWave.faults.arm("waveOutPrepareHeader", 3);
    EXPECT_NE(start(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, the_hosts_own_quit_message_survives_a_failed_start) {
    ::PostQuitMessage(77);
    fakeWave.faults.arm("waveOutPrepareHeader", 3);
    EXPECT_NE(start(), 0);
    MSG message{};
    ASSERT_TRUE(::PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 77u);
}

TEST_F(PlaybackFaults, a_failed_unprepare_is_reported_and_the_refill_goes_on) {
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutUnprepareHeader", 2, once, 33);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut:waveOutUnprepareHeader|33|"));
    EXPECT_EQ(fakeWave.writes, 8);
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_failed_prepare_is_reported_and_the_write_is_still_tried) {
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutPrepareHeader", 2, once, 7);
    dispatchWaitingMessages();
    EXPECT_EQ(callsOf("Write 1"), 1);
    EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut:waveOutPrepareHeader|7|",
                                         L"WindowProcOut:waveOutWrite|34|"))
        << "this device refuses a buffer that is not prepared";
}

TEST_F(PlaybackFaults, a_failed_write_is_reported_and_loses_its_buffer) {
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 3, once, 6);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut:waveOutWrite|6|"));
    EXPECT_EQ(fakeWave.queued.size(), 7u);
    for (int i = 0; i < 20; ++i) {
        fakeWave.finishOne();
        dispatchWaitingMessages();
        EXPECT_EQ(fakeWave.queued.size(), 7u);
    }
}

TEST_F(PlaybackFaults, after_a_lost_buffer_the_end_never_comes) {
    script.data = noise(buffer * 20);
    ASSERT_EQ(start(), 0);
    fakeWave.faults.arm("waveOutWrite", 3);
    dispatchWaitingMessages();
    playOut();
    EXPECT_TRUE(fakeWave.open);
    EXPECT_TRUE(host.player.IsPlaying());
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    EXPECT_EQ(start(), -201);
    // Stopping does not bring the lost buffer back either; leaving does end it.
    EXPECT_EQ(host.player.PlayStop(), 0);
    dispatchWaitingMessages();
    EXPECT_TRUE(fakeWave.open);
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_FALSE(fakeWave.open);
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_failed_reset_is_reported_with_its_number_as_text_and_is_the_result) {
    startAndFill();
    fakeWave.faults.arm("waveOutReset", 1, once, 11);
    script.log.clear();
    EXPECT_EQ(host.player.PlayStop(), 11);
    EXPECT_THAT(host.events, ElementsAre(L"StopPlayAudio:waveOutReset|11|11"));
    EXPECT_THAT(script.log, ElementsAre(L"Close")) << "the source is closed all the same";
    playOut();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1) << "what was queued plays out and ends it";
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, the_end_within_the_report_of_a_failed_reset_is_reported_like_any_other) {
    startAndFill();
    fakeWave.faults.arm("waveOutReset", 1, once, 11);
    host.onErr = [handled = false](const std::wstring&) mutable {
        if (!std::exchange(handled, true))
            playOut();
    };
    EXPECT_EQ(host.player.PlayStop(), 11);
    EXPECT_THAT(host.events, ElementsAre(L"StopPlayAudio:waveOutReset|11|11",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_handler_that_stops_again_at_each_failed_reset_comes_to_an_end) {
    startAndFill();
    fakeWave.faults.arm("waveOutReset", 1, forever, 11);
    host.onErr = [this](const std::wstring&) { EXPECT_NE(host.player.PlayStop(), 0); };
    EXPECT_EQ(host.player.PlayStop(), 11);
    playOut();
    EXPECT_EQ(host.countOf(L"StopPlayAudio:waveOutReset|11|11"), 2) << "the stop, and the end";
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, each_failed_unprepare_of_the_ninth_record_is_reported_by_index) {
    script.data = noise(100);
    ASSERT_EQ(start(), 0);
    // The first unprepare belongs to the one buffer that is played.
    fakeWave.faults.arm("waveOutUnprepareHeader", 2, forever, 33);
    dispatchWaitingMessages();
    playOut();
    std::vector<std::wstring> expected;
    for (const wchar_t* index : {L"0", L"1", L"2", L"3", L"4", L"5", L"6", L"7"})
        expected.push_back(std::wstring(L"StopPlayProc:waveOutUnprepareHeader :hdr(")
                               .append(index)
                               .append(L")|33|"));
    expected.insert(expected.end(), endOfPlayback.begin(), endOfPlayback.end());
    EXPECT_THAT(host.events, ElementsAreArray(expected));
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_failed_close_is_reported_and_clears_playing_anyway) {
    script.data = noise(100);
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1, once, 33);
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"StopPlayProc:waveOutClose|33|33"));
    EXPECT_TRUE(fakeWave.open);
    EXPECT_TRUE(host.player.IsPlaying()) << "no close message has come";
    // The next start closes the device that is still open, and its close message stops nothing.
    expectTheNextPlaybackWorks();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(fakeWave.closes, 2);
}

TEST_F(PlaybackFaults, a_failed_start_after_a_failed_close_brings_the_DonePlay_that_is_due) {
    script.data = noise(100);
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1, once);
    playOut();
    host.events.clear();
    fakeWave.faults.arm("waveOutOpen", 1, once);
    EXPECT_NE(start(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    EXPECT_FALSE(host.player.IsPlaying());
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults,
       a_start_that_cannot_be_undone_leaves_the_close_message_of_the_playback_before) {
    playUntilClosed();
    windowFaults.arm("PostMessage", 5, once, 1400);
    fakeWave.faults.arm("waveOutClose", 1, once);
    EXPECT_EQ(start(), 1400);
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
}

TEST_F(PlaybackFaults, a_buffer_that_comes_back_at_the_next_start_is_none_of_the_next_playback) {
    script.data = noise(buffer * 4);
    startAndFill();
    for (int i = 0; i < 3; ++i)
        fakeWave.finishOne();
    dispatchWaitingMessages();
    // Counted as the last one, which the device still has, so that it does not close.
    ::SendMessageA(host.window.handle(), MM_WOM_DONE, 0, 0);
    ASSERT_TRUE(fakeWave.open);
    ASSERT_EQ(fakeWave.queued.size(), 1u);
    host.events.clear();
    script.data = noise(buffer * 20);
    startAndFill();
    EXPECT_EQ(fakeWave.queued.size(), 8u);
    EXPECT_TRUE(host.events.empty()) << "a ninth buffer is not filled";
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlaybackFaults, a_device_that_never_closes_is_left_to_itself_with_its_buffers) {
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1, forever);
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_FALSE(host.player.IsPlaying());
    host.player.shutdown();
}

TEST_F(PlaybackFaults, each_stop_whose_reset_fails_is_reported) {
    startAndFill();
    fakeWave.faults.arm("waveOutReset", 1, forever, 11);
    EXPECT_EQ(host.player.PlayStop(), 11);
    EXPECT_EQ(host.player.PlayStop(), 11);
    EXPECT_EQ(host.countOf(L"StopPlayAudio:waveOutReset|11|11"), 2);
    fakeWave.faults.disarm();
    playOut();
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, no_more_is_fed_while_a_failed_reset_is_reported) {
    startAndFill();
    fakeWave.faults.arm("waveOutReset", 1, once, 11);
    host.onErr = [handled = false](const std::wstring&) mutable {
        if (std::exchange(handled, true))
            return;
        fakeWave.finishOne();
        dispatchWaitingMessages();
        EXPECT_EQ(fakeWave.writes, 8);
    };
    EXPECT_EQ(host.player.PlayStop(), 11);
    EXPECT_EQ(fakeWave.queued.size(), 7u);
    playOut();
    EXPECT_EQ(fakeWave.writes, 8);
    expectTheNextPlaybackWorks();
}

} // namespace
} // namespace corvina::test
