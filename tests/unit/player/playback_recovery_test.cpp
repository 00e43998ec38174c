// What becomes of a playback whose device refuses every buffer from some moment on, with Recover
// and without.

#include "PlaybackFaultsFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;

class Recovery : public PlaybackFaults {
protected:
    Recovery() {
        script.moves = true;
        script.data = noise(buffer * 30);
        options().recovers = true;
    }

    [[nodiscard]] PlaybackOptions& options() { return host.player.settings().options(); }
    // Plays eight buffers, which the device refuses when they are filled again. It works as ever
    // after the last of them, or does what is called then.
    void loseDevice(const std::function<void()>& whenLost = nullptr) {
        fakeWave.faults.arm("waveOutWrite", 1, forever, MMSYSERR_NODRIVER);
        host.onErr = [whenLost, refused = 0](const std::wstring&) mutable {
            if (++refused != 8)
                return;
            fakeWave.faults.disarm();
            if (whenLost)
                whenLost();
        };
        fakeWave.finishAll();
        dispatchWaitingMessages();
    }
    // The sound behind that many milliseconds.
    [[nodiscard]] static Bytes soundFrom(std::int64_t milliseconds) {
        const auto from = static_cast<std::ptrdiff_t>(milliseconds * 44100 / 1000 * 4);
        return {script.data.begin() + from, script.data.end()};
    }
    static void expectHeard(const Bytes& sound) {
        ASSERT_GE(fakeWave.written.size(), sound.size());
        EXPECT_TRUE(std::equal(sound.begin(), sound.end(), fakeWave.written.begin()));
    }
};

constexpr std::int64_t msOfEightBuffers = 363;

TEST_F(Recovery, goes_on_where_it_was_heard_on_the_device_of_the_systems_choice) {
    ASSERT_EQ(start(3), 0);
    dispatchWaitingMessages();
    fakeWave.written.clear();
    loseDevice();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    EXPECT_EQ(host.player.PositionMs(), msOfEightBuffers);
    EXPECT_EQ(host.player.State(), PLAY_PLAYING);
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    playOut();
    expectHeard(soundFrom(msOfEightBuffers));
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(Recovery, plays_the_next_file_that_was_fed_to_the_lost_device) {
    script.data = noise(buffer * 10);
    const Bytes next = noise(buffer * 20, 7);
    script.otherData[L"next.test"] = next;
    options().nextFile = folder.write(L"next.test", {0});
    startAndFill();
    fakeWave.written.clear();
    loseDevice();
    playOut();
    Bytes expected = soundFrom(msOfEightBuffers);
    expected.insert(expected.end(), next.begin(), next.end());
    expectHeard(expected);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.test", L"State 0", L"Ended 0"));
}

TEST_F(Recovery, stays_with_that_device_for_a_next_file_of_another_format) {
    script.otherFormats[L"next.test"] = pcm(22050, 1, 16);
    options().nextFile = folder.write(L"next.test", {0});
    ASSERT_EQ(start(3), 0);
    dispatchWaitingMessages();
    loseDevice();
    playOut();
    EXPECT_EQ(fakeWave.opens, 3);
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 22050u);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.test", L"State 0", L"Ended 0"));
}

TEST_F(Recovery, is_done_again_and_again) {
    startAndFill();
    loseDevice();
    fakeWave.written.clear();
    loseDevice();
    EXPECT_EQ(fakeWave.opens, 3);
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
}

TEST_F(Recovery, is_not_tried_if_it_is_not_wanted) {
    options().recovers = false;
    startAndFill();
    loseDevice();
    EXPECT_EQ(fakeWave.opens, 1);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(Recovery, ends_the_playback_if_there_is_no_other_device) {
    startAndFill();
    loseDevice([] { fakeWave.faults.arm("waveOutOpen", 1); });
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(Recovery, ends_the_playback_if_the_other_device_takes_no_buffer_either) {
    startAndFill();
    int refused = 0;
    host.onErr = [&](const std::wstring&) {
        // No playback may go on like this for ever.
        if (++refused == 100)
            fakeWave.faults.disarm();
    };
    fakeWave.faults.arm("waveOutWrite", 1, forever, MMSYSERR_NODRIVER);
    fakeWave.finishAll();
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(host.countOf(L"WindowProcOut:waveOutWrite|6|"), 16);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

TEST_F(Recovery, is_tried_anew_with_the_next_playback) {
    startAndFill();
    loseDevice([] { fakeWave.faults.arm("waveOutWrite", 1, forever); });
    ASSERT_EQ(host.progress.back(), L"Ended 2");
    ASSERT_EQ(fakeWave.opens, 2);
    ASSERT_EQ(start(3), 0);
    // From the first buffer on.
    loseDevice();
    EXPECT_EQ(fakeWave.opens, 4);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    playOut();
    EXPECT_EQ(host.progress.back(), L"Ended 0");
}

TEST_F(Recovery, ends_the_playback_if_the_lost_device_does_not_close) {
    startAndFill();
    loseDevice([] { fakeWave.faults.arm("waveOutClose", 1); });
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    fakeWave.open = false;
    fakeWave.queued.clear();
    expectTheNextPlaybackWorks();
}

TEST_F(Recovery, ends_the_playback_if_the_source_cannot_be_moved_there) {
    script.data = noise(buffer * 60);
    startAndFill();
    while (fakeWave.finishedFrames < 46000) {
        fakeWave.finishOne();
        dispatchWaitingMessages();
    }
    script.seekResult = SourceResult::notOpen;
    loseDevice();
    EXPECT_EQ(fakeWave.opens, 1);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 2"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
}

TEST_F(Recovery, ends_with_the_new_device_if_its_messages_are_refused) {
    startAndFill();
    loseDevice([] { windowFaults.arm("PostMessage", 1); });
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    expectTheNextPlaybackWorks();
}

} // namespace
} // namespace corvina::test
