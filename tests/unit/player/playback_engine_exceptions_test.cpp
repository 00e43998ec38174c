// The playback engine when the source throws.

#include "PlaybackFaultsFixture.h"

#include <new>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;

TEST_F(PlaybackFaults, an_overflow_while_refilling_is_reported_and_ends_the_playback) {
    startAndFill();
    script.onRead = [] { throwOverflow(); };
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut|6|Overflow",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(fakeAcm.openStreams, 0);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, an_overflow_at_the_first_read_ends_the_playback) {
    script.onRead = [] { throwOverflow(); };
    startAndFill();
    EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut|6|Overflow",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_EQ(fakeWave.writes, 0);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, want_of_memory_while_refilling_is_reported_as_7) {
    startAndFill();
    script.onRead = [] { throw std::bad_alloc(); };
    playOut();
    EXPECT_EQ(host.events.front(), L"WindowProcOut|7|Out of memory");
    EXPECT_EQ(host.events.back(), L"DonePlay");
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, anything_else_thrown_is_reported_as_51) {
    startAndFill();
    script.onRead = [] { throw 1; };
    playOut();
    EXPECT_EQ(host.events.front(), L"WindowProcOut|51|Internal error");
    EXPECT_EQ(host.events.back(), L"DonePlay");
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_source_that_fails_to_close_does_not_keep_DonePlay_away) {
    startAndFill();
    script.onClose = [] { throwOverflow(); };
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"StopPlayAudio:waveOutReset|5|5",
                                         L"WindowProcOut|6|Overflow", L"DonePlay"));
    EXPECT_EQ(fakeAcm.openStreams, 0);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_source_that_fails_to_read_and_to_close_is_survived) {
    startAndFill();
    script.onRead = [] { throwOverflow(); };
    script.onClose = [] { throwOverflow(); };
    playOut();
    EXPECT_EQ(host.events.back(), L"DonePlay");
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, a_failed_refill_ends_with_DonePlay_even_if_the_device_refuses_to_close) {
    for (const int refusedPosts : {0, 1}) {
        SCOPED_TRACE(refusedPosts);
        host.events.clear();
        host.progress.clear();
        startAndFill();
        script.onRead = [] { throwOverflow(); };
        fakeWave.faults.arm("waveOutClose", 1, once);
        if (refusedPosts > 0)
            windowFaults.arm("PostMessage", 1, forever);
        playOut();
        EXPECT_THAT(host.events, ElementsAre(L"WindowProcOut|6|Overflow",
                                             L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
        EXPECT_EQ(host.progress.back(), L"Ended " + std::to_wstring(PLAYEND_ERROR));
        EXPECT_FALSE(host.player.IsPlaying());
        EXPECT_EQ(fakeAcm.openStreams, 0);
        fakeWave.reset(); // the device that refused is left to itself
        expectTheNextPlaybackWorks();
    }
}

TEST_F(PlaybackFaults, calls_from_the_Err_of_a_thrown_failure_are_safe) {
    const std::function<void()> calls[] = {
        [&] { host.player.PlayStop(); },
        [&] { EXPECT_EQ(start(), -201); },
        [&] { host.player.DeInit(); },
        [&] {
            host.player.DeInit();
            host.init();
            script.onRead = nullptr;
            EXPECT_EQ(start(), 0);
        },
        [&] { dispatchWaitingMessages(); },
        [&] { host.player.shutdown(); },
    };
    for (std::size_t i = 0; i < std::size(calls); ++i) {
        SCOPED_TRACE(i);
        startAndFill();
        script.onRead = [] { throwOverflow(); };
        bool called = false;
        host.onErr = [&, i](const std::wstring& function) {
            if (function == L"WindowProcOut" && !std::exchange(called, true))
                calls[i]();
        };
        playOut();
        EXPECT_TRUE(called);
        script.onRead = nullptr;
        playOut();
        EXPECT_FALSE(fakeWave.open);
        EXPECT_FALSE(host.player.IsPlaying());
        host.init();
        expectTheNextPlaybackWorks();
    }
}

} // namespace
} // namespace corvina::test
