// The events at the end of a playback on the real device, whatever ends it, and hosts that behave
// badly in the middle of one.

#include "SoundTest.h"

namespace corvina::test {
namespace {

using Events = SoundTest;

TEST_F(Events, at_the_end_of_a_file_are_one_Err_for_the_reset_and_one_DonePlay) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(shortLength))), 0);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
    EXPECT_FALSE(host.isPlaying());
}

TEST_F(Events, at_the_end_of_a_file_shorter_than_a_buffer_are_the_same) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(10))), 0);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
}

TEST_F(Events, after_PlayStop_are_the_same) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(10 * 44100))), 0);
    dispatchWaitingMessages();
    ASSERT_EQ(host.stop(), 0);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
}

TEST_F(Events, after_PlayStop_before_any_message_was_handled_are_the_same) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(10 * 44100))), 0);
    ASSERT_EQ(host.stop(), 0);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
}

TEST_F(Events, after_PlayStop_while_paused_are_the_same) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(10 * 44100))), 0);
    dispatchWaitingMessages();
    ASSERT_EQ(host.pause(), 0);
    ASSERT_EQ(host.stop(), 0);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
}

// DonePlay once is exactly once: nothing comes behind it.
TEST_F(Events, end_with_DonePlay) {
    PlayerHost host;
    ASSERT_EQ(host.start(file(signal(10))), 0);
    ASSERT_TRUE(host.waitForDone());
    const std::size_t done = recording.now();
    ASSERT_TRUE(pumpUntil([&] { return recording.now() > done + 22050; }));
    EXPECT_EQ(host.events(), endOfPlayback());
}

TEST_F(Events, do_not_come_from_PlayStop_when_nothing_plays) {
    PlayerHost host;
    EXPECT_EQ(host.stop(), 0);
    dispatchWaitingMessages();
    EXPECT_TRUE(host.events().empty());
}

TEST_F(Events, do_not_come_from_a_second_PlayStart_which_is_refused) {
    const std::wstring path = file(signal(shortLength));
    PlayerHost host;
    ASSERT_EQ(host.start(path), 0);
    EXPECT_EQ(host.start(path), -201);
    ASSERT_TRUE(host.waitForDone());
    EXPECT_EQ(host.events(), endOfPlayback());
}

TEST_F(Events, do_not_come_from_a_device_that_does_not_exist) {
    PlayerHost host;
    EXPECT_EQ(host.start(file(signal(10)), 4711), static_cast<long>(MMSYSERR_BADDEVICEID));
    EXPECT_TRUE(host.events().empty());
    EXPECT_FALSE(host.isPlaying());
}

// This thread's; other programs have theirs among the message-only windows too.
HWND findControlWindow() {
    HWND window = nullptr;
    do
        window = ::FindWindowExW(HWND_MESSAGE, window, L"CorvinaControl", nullptr);
    while (window && ::GetWindowThreadProcessId(window, nullptr) != ::GetCurrentThreadId());
    return window;
}

// Whether a playback with a new control is heard and ends as ever.
class HostThatMisbehaves : public SoundTest {
protected:
    void startLongFile(PlayerHost& host) {
        ASSERT_EQ(host.start(file(signal(10 * 44100, 7))), 0);
        dispatchWaitingMessages();
    }

    void releaseInside(const std::wstring& eventName) {
        PlayerHost* self = nullptr;
        bool released = false;
        PlayerHost host([&](const LoggedEvent& event) {
            if (event.name == eventName) {
                self->release();
                released = true;
            }
        });
        self = &host;
        ASSERT_EQ(host.start(file(signal(10))), 0);
        ASSERT_TRUE(pumpUntil([&] { return released; }));
    }

    void expectNextPlaybackIsWhole() {
        // Nothing of the one before may still sound.
        const auto silent = [this] {
            const Frames last = recording.since(recording.now() - 4410);
            return withoutSilenceBehind(last).empty();
        };
        ASSERT_TRUE(pumpUntil(silent, 5s)) << "the playback before did not stop";
        const Frames frames = signal(shortLength);
        const std::wstring path = file(frames);
        expectRecorded(frames, [&] { return playWhole(path, frames.size()); });
    }
};

TEST_F(HostThatMisbehaves, releases_the_control_while_it_plays) {
    {
        PlayerHost host;
        startLongFile(host);
        host.release();
    }
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, releases_the_control_while_it_is_paused) {
    {
        PlayerHost host;
        startLongFile(host);
        ASSERT_EQ(host.pause(), 0);
        host.release();
    }
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, releases_the_control_inside_Err) {
    releaseInside(L"Err");
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, releases_the_control_inside_DonePlay) {
    releaseInside(L"DonePlay");
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, stops_inside_Err) {
    PlayerHost* self = nullptr;
    PlayerHost host([&](const LoggedEvent& event) {
        if (event.name == L"Err" && self->events().size() < 10)
            (void)self->stop();
    });
    self = &host;
    ASSERT_EQ(host.start(file(signal(10))), 0);
    ASSERT_TRUE(host.waitForDone());
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, destroys_the_controls_window_while_it_plays) {
    {
        PlayerHost host;
        startLongFile(host);
        const HWND window = findControlWindow();
        ASSERT_NE(window, nullptr);
        ASSERT_TRUE(::DestroyWindow(window));
        dispatchWaitingMessages();
        (void)host.stop();
    }
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, never_handles_a_message) {
    {
        PlayerHost host;
        ASSERT_EQ(host.start(file(signal(10 * 44100))), 0);
        // The ring is filled by messages, so nothing is heard; the time passes by the recording.
        const std::size_t before = recording.now();
        while (recording.now() < before + 22050)
            ::Sleep(10);
        EXPECT_EQ(recording.soundSince(before), std::nullopt);
        EXPECT_TRUE(host.events().empty());
    }
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, stops_handling_messages_in_the_middle) {
    {
        PlayerHost host;
        startLongFile(host);
        const std::size_t before = recording.now();
        while (recording.now() < before + 44100)
            ::Sleep(10);
    }
    expectNextPlaybackIsWhole();
}

TEST_F(HostThatMisbehaves, calls_DeInit_while_it_plays) {
    {
        PlayerHost host;
        startLongFile(host);
        long result = -1;
        ASSERT_EQ(host.control()->DeInit(&result), S_OK);
        EXPECT_EQ(result, 0);
    }
    expectNextPlaybackIsWhole();
}

} // namespace
} // namespace corvina::test
