#pragma once

// The player with a fake device, a copying codec and a scripted source, on a real window.

#include "player/ErrorText.h"
#include "support/BarePlayer.h"
#include "support/FakeAcm.h"
#include "support/FakeWave.h"
#include "support/FaultyWindows.h"
#include "support/ScriptedSource.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {

// Each state that the players of this program have entered, by name.
inline std::vector<std::string> stateLog;

// Every test checks that no step was made that should not be.
inline void logState(PlaybackState from, PlaybackState to) {
    EXPECT_TRUE(mayFollow(from, to)) << nameOf(from) << " to " << nameOf(to);
    stateLog.emplace_back(nameOf(to));
}

[[nodiscard]] inline PlayerPlatform fakePlatform() {
    return {.wave = fakeWaveApi,
            .windows = faultyWindowApi,
            .acm = fakeAcmApi,
            .files = systemFileApi,
            .makeSources = &makeScriptedSources,
            .trace = &logState};
}

class Playback : public ::testing::Test {
protected:
    static constexpr std::size_t buffer = 8000;

    Playback() {
        fakeWave.reset();
        fakeAcm.reset();
        script = {};
        windowFaults.disarm();
        windowLog.clear();
        stateLog.clear();
        script.data = noise(buffer * 100);
        file = folder.write(L"song.test", {0});
        EXPECT_EQ(host.init(), 0);
        fakeWave.log.clear();
    }

    std::int32_t start(std::int32_t device = -1) { return host.player.PlayStart(file, device, 0); }
    // Starts and handles the eight messages that fill the ring.
    void startAndFill() {
        ASSERT_EQ(start(), 0);
        dispatchWaitingMessages();
    }
    // Lets the device play until nothing is left to play.
    static void playOut() {
        do {
            fakeWave.finishAll();
            dispatchWaitingMessages();
        } while (!fakeWave.queued.empty() && !fakeWave.paused);
    }
    // Leaves the close message in the queue.
    static void handleReturnedBuffers() {
        MSG message;
        while (::PeekMessageA(&message, nullptr, MM_WOM_DONE, MM_WOM_DONE, PM_REMOVE))
            ::DispatchMessageA(&message);
    }
    // How often a call was made of the device.
    static long callsOf(const std::string& call) {
        return std::count(fakeWave.log.begin(), fakeWave.log.end(), call);
    }
    // The calls made of the device since the last look.
    static std::vector<std::string> takeLog() { return std::exchange(fakeWave.log, {}); }
    // A whole playback: from here a new start works as ever.
    void expectTheNextPlaybackWorks() {
        host.onErr = nullptr;
        host.onDonePlay = nullptr;
        script.onRead = nullptr;
        script.onClose = nullptr;
        fakeWave.faults.disarm();
        windowFaults.disarm();
        fakeAcm.faults.disarm();
        host.events.clear();
        fakeWave.written.clear();
        ASSERT_EQ(start(), 0);
        dispatchWaitingMessages();
        playOut();
        EXPECT_EQ(host.events, endOfPlayback);
        EXPECT_TRUE(host.player.DonePlay());
        EXPECT_FALSE(fakeWave.open);
        fakeWave.written.resize(std::min(fakeWave.written.size(), script.data.size()));
        EXPECT_TRUE(fakeWave.written == script.data);
    }

    const std::vector<std::wstring> endOfPlayback{L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"};
    TempFolder folder;
    std::wstring file;
    BarePlayer host{fakePlatform()};
};

} // namespace corvina::test
