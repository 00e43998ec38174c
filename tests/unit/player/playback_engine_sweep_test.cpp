// The playback engine when any one call fails, and when it fails ever after.

#include "PlaybackFaultsFixture.h"

namespace corvina::test {
namespace {

// A whole playback with pause, seek and stop, then leaving. Whatever fails, everything is released,
// and afterwards a playback works.
class EveryCall : public PlaybackFaults {
protected:
    void sweep(Faults& faults, const std::function<void()>& play) {
        forEachFault(faults, [&] { live(faults, play); });
    }
    void sweepPairs(Faults& faults, const std::function<void()>& play) {
        forEachPairOfFaults(
            faults, [&] { live(faults, play); }, 2);
    }
    void live(Faults& faults, const std::function<void()>& play) {
        play();
        dispatchWaitingMessages();
        host.player.DeInit();
        dispatchWaitingMessages();
        EXPECT_FALSE(host.player.IsPlaying());
        // A device that would not close is lost with what it has queued; another takes its
        // place.
        if (fakeWave.open) {
            EXPECT_GT(faults.struck(), 0);
            fakeWave.open = false;
            fakeWave.queued.clear();
        }
        EXPECT_EQ(fakeAcm.openStreams, 0);
        host.init();
        const auto struckSoFar = faults;
        expectTheNextPlaybackWorks();
        // The codecs too are there again for the next run.
        host.player.DeInit();
        host.init();
        faults = struckSoFar;
        host.events.clear();
    }
    void playAndStop() {
        if (start() != 0)
            return;
        dispatchWaitingMessages();
        fakeWave.finishOne();
        dispatchWaitingMessages();
        host.player.PlayPause();
        host.player.PlayUnPause();
        host.player.PositionSet(0);
        host.player.PlayStop();
        dispatchWaitingMessages();
    }
    void playToTheEnd() {
        if (start() != 0)
            return;
        dispatchWaitingMessages();
        playOut();
    }
};

TEST_F(EveryCall, of_the_device_fails_in_a_playback_that_is_stopped) {
    sweep(fakeWave.faults, [&] { playAndStop(); });
}

TEST_F(EveryCall, of_the_device_fails_in_a_playback_to_the_end) {
    script.data = noise(buffer * 10 + 500);
    sweep(fakeWave.faults, [&] { playToTheEnd(); });
}

TEST_F(EveryCall, of_the_window_fails) {
    script.data = noise(buffer * 2);
    sweep(windowFaults, [&] { playToTheEnd(); });
}

TEST_F(EveryCall, of_the_codec_fails) {
    script.data = noise(buffer * 30);
    sweep(fakeAcm.faults, [&] { playToTheEnd(); });
}

TEST_F(EveryCall, of_the_device_fails_and_another_in_the_cleanup) {
    script.data = noise(buffer * 2);
    sweepPairs(fakeWave.faults, [&] { playAndStop(); });
}

TEST_F(EveryCall, of_the_window_fails_and_another_in_the_cleanup) {
    script.data = noise(buffer);
    sweepPairs(windowFaults, [&] { playToTheEnd(); });
}

TEST_F(EveryCall, of_the_codec_fails_and_another_in_the_cleanup) {
    script.data = noise(buffer * 10);
    sweepPairs(fakeAcm.faults, [&] { playToTheEnd(); });
}

} // namespace
} // namespace corvina::test
