// The calls that a host makes from inside the events of the player.

#include "PlaybackFixture.h"

namespace corvina::test {
namespace {

using Reentrance = Playback;

TEST_F(Reentrance, PlayStop_inside_every_Err_ends_as_usual) {
    host.onErr = [&](const std::wstring&) { host.player.PlayStop(); };
    startAndFill();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(Reentrance, DeInit_inside_Err_or_DonePlay_is_safe) {
    startAndFill();
    host.onErr = [&](const std::wstring&) { host.player.DeInit(); };
    host.onDonePlay = [&] { host.player.DeInit(); };
    playOut();
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(Reentrance, PlayStart_inside_the_Err_before_DonePlay_is_stopped_with_its_playback) {
    bool started = false;
    host.onErr = [&](const std::wstring&) {
        if (!std::exchange(started, true)) {
            EXPECT_EQ(start(), 0);
        }
    };
    startAndFill();
    playOut();
    EXPECT_TRUE(started);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.countOf(L"DonePlay"), 2);
    expectTheNextPlaybackWorks();
}

TEST_F(Reentrance, the_end_of_the_control_inside_Err_or_DonePlay_is_safe) {
    for (const bool inErr : {true, false}) {
        BarePlayer victim(fakePlatform());
        victim.init();
        ASSERT_EQ(victim.player.PlayStart(file, -1, 0), 0);
        const auto end = [&] {
            victim.player.shutdown();
            victim.window.destroy();
        };
        if (inErr)
            victim.onErr = [&](const std::wstring&) { end(); };
        else
            victim.onDonePlay = end;
        dispatchWaitingMessages();
        victim.player.PlayStop();
        dispatchWaitingMessages();
        EXPECT_FALSE(fakeWave.open);
    }
}

TEST_F(Reentrance, calls_from_the_Err_of_a_failed_refill_are_safe) {
    // The buffer that could not be unprepared is in the engine's hands while the handler runs.
    const std::function<void()> calls[] = {
        [&] { host.player.PlayStop(); },
        [&] { host.player.DeInit(); },
        [&] { EXPECT_EQ(start(), -201); },
        [&] {
            host.player.DeInit();
            host.init();
            EXPECT_EQ(start(), 0);
        },
        [&] {
            host.player.DeInit();
            host.init();
            fakeAcm.refusedBits = {8, 16};
            host.onErr = nullptr;
            EXPECT_EQ(start(), 5);
            fakeAcm.refusedBits.clear();
        },
        [&] { host.player.OpenAudioFile(file); },
        [&] { host.player.OpenAudioFile(L"missing"); },
        [&] { dispatchWaitingMessages(); },
        [&] {
            host.player.PlayStop();
            dispatchWaitingMessages();
        },
    };
    for (const char* call : {"waveOutUnprepareHeader", "waveOutPrepareHeader", "waveOutWrite"}) {
        for (std::size_t i = 0; i < std::size(calls); ++i) {
            SCOPED_TRACE(std::string(call).append(" ").append(std::to_string(i)));
            bool called = false;
            host.onErr = [&, i](const std::wstring& function) {
                if (function.starts_with(L"WindowProcOut") && !std::exchange(called, true))
                    calls[i]();
            };
            ASSERT_EQ(start(), 0);
            fakeWave.faults.arm(call, 4);
            dispatchWaitingMessages();
            playOut();
            EXPECT_TRUE(called);
            // A refused write loses its buffer, and with it the end; leaving always helps.
            host.player.DeInit();
            EXPECT_FALSE(fakeWave.open);
            EXPECT_FALSE(host.player.IsPlaying());
            host.init();
            expectTheNextPlaybackWorks();
        }
    }
}

} // namespace
} // namespace corvina::test
