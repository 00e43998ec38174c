// The playback engine when the source throws.

#include "PlaybackFaultsFixture.h"
#include "TrackFixture.h"

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

TEST_F(PlaybackFaults, a_failed_reset_after_a_thrown_failure_is_reported_too) {
    startAndFill();
    script.onRead = [] { throwOverflow(); };
    fakeWave.faults.arm("waveOutReset", 1, once, MMSYSERR_NODRIVER);
    playOut();
    EXPECT_THAT(host.events,
                ElementsAre(L"WindowProcOut|6|Overflow", L"StopPlayAudio:waveOutReset|6|6",
                            L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(PlaybackFaults, the_file_is_closed_as_soon_as_reading_it_has_thrown) {
    startAndFill();
    script.log.clear();
    script.onRead = [] { throwOverflow(); };
    fakeWave.finishAll();
    handleReturnedBuffers();
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(fakeAcm.openStreams, 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
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

TEST_F(PlaybackFaults, no_more_is_fed_while_a_thrown_failure_is_reported) {
    startAndFill();
    script.onRead = [] { throwOverflow(); };
    host.onErr = [handled = false](const std::wstring&) mutable {
        if (std::exchange(handled, true))
            return;
        fakeWave.finishAll();
        dispatchWaitingMessages();
    };
    playOut();
    EXPECT_EQ(host.countOf(L"WindowProcOut|6|Overflow"), 1);
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

// An engine whose supply throws when the next track is heard.
class ThrowingSupply : public ::testing::Test, public TrackSupply, public PlayerEvents {
protected:
    ThrowingSupply() {
        fakeWave.reset();
        fakeAcm.reset();
        fakeTimers.clear();
        engine.connect(window.handle());
    }
    static TrackQueue::Track track(std::size_t frames) {
        return std::make_shared<PlayedTrack>(L"", numberedSource(0, frames), fakeAcmApi, nullptr);
    }
    void handleMessages() {
        MSG message;
        while (::PeekMessageA(&message, window.handle(), MM_WOM_CLOSE, MM_WOM_DONE, PM_REMOVE))
            engine.handleMessage(message.message);
    }

    TrackQueue::Track takeNext() override {
        const TrackQueue::Track taken = std::exchange(next, nullptr);
        return taken && taken->begin() ? taken : nullptr;
    }
    void giveBack(const TrackQueue::Track&) override {}
    void nextHeard(const TrackQueue::Track&) override { throwOverflow(); }
    void reportFailures() override {}

    void Err(const std::wstring& function, std::int32_t, const std::wstring&) noexcept override {
        events.push_back(function);
        if (function != L"WindowProcOut")
            return;
        const int before = fakeWave.writes;
        fakeWave.finishOne();
        handleMessages();
        EXPECT_EQ(fakeWave.writes, before) << "no more is fed";
    }
    void DonePlay() noexcept override { events.emplace_back(L"DonePlay"); }
    void Ended(PlayEndReason reason) noexcept override {
        events.push_back(L"Ended " + std::to_wstring(reason));
    }
    void StateChanged(PlayState) noexcept override {}
    void PositionChanged(std::int32_t) noexcept override {}
    void NextStarted(const std::wstring&) noexcept override {}

    HiddenWindow window;
    TrackQueue::Track next = track(30'000);
    std::vector<std::wstring> events;
    PlaybackOptions options;
    const PlayerPlatform platform = fakePlatform();
    PlaybackEngine engine{*this, *this, options, platform};
};

TEST_F(ThrowingSupply, ends_the_playback_also_if_it_throws_between_two_buffers) {
    ASSERT_EQ(engine.start(-1, track(6000)), 0);
    handleMessages();
    fakeWave.framesBeyond = 6000;
    tickTimers();
    EXPECT_FALSE(fakeWave.open);
    handleMessages();
    EXPECT_THAT(events, ElementsAre(L"WindowProcOut", L"StopPlayAudio:waveOutReset", L"DonePlay",
                                    L"Ended 3"));
    EXPECT_TRUE(engine.done());
}

using EngineAlone = ThrowingSupply;

TEST_F(EngineAlone, closes_its_device_when_it_is_destroyed_in_mid_play) {
    {
        PlaybackEngine other(*this, *this, options, platform);
        other.connect(window.handle());
        ASSERT_EQ(other.start(-1, track(30'000)), 0);
        EXPECT_TRUE(fakeWave.open);
    }
    EXPECT_FALSE(fakeWave.open);
    EXPECT_TRUE(fakeTimers.empty());
    MSG message;
    EXPECT_FALSE(::PeekMessageA(&message, window.handle(), MM_WOM_CLOSE, MM_WOM_DONE, PM_REMOVE));
    EXPECT_THAT(events, ElementsAre());
}

} // namespace
} // namespace corvina::test
