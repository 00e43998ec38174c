// The timer of a message loop: when it ticks, and that it does not once it was stopped.

#include "player/WindowTimer.h"

#include "support/FaultyWindows.h"
#include "support/HiddenWindow.h"
#include "support/MessagePump.h"

#include <gtest/gtest.h>
#include <optional>

namespace corvina::test {
namespace {

class Timer : public ::testing::Test {
protected:
    Timer() { fakeTimers.clear(); }

    // The only one; what a message of it that is still in the queue would call.
    static std::pair<UINT_PTR, TIMERPROC> running() {
        EXPECT_EQ(fakeTimers.size(), 1u);
        const auto& [id, timer] = *fakeTimers.begin();
        return {id, timer.second};
    }

    int ticks = 0;
    std::optional<WindowTimer> timer{std::in_place, faultyWindowApi, [this] { ++ticks; }};
};

TEST_F(Timer, does_not_run_at_first) {
    EXPECT_TRUE(fakeTimers.empty());
    timer->stop();
    EXPECT_TRUE(fakeTimers.empty());
}

TEST_F(Timer, ticks_in_its_interval_from_start_to_stop) {
    timer->start(nullptr, 100);
    ASSERT_EQ(fakeTimers.size(), 1u);
    EXPECT_EQ(fakeTimers.begin()->second.first, 100u);
    EXPECT_EQ(ticks, 0);
    tickTimers();
    tickTimers();
    EXPECT_EQ(ticks, 2);
    timer->stop();
    EXPECT_TRUE(fakeTimers.empty());
}

TEST_F(Timer, that_runs_already_takes_another_interval) {
    timer->start(nullptr, 100);
    timer->start(nullptr, 30);
    ASSERT_EQ(fakeTimers.size(), 1u);
    EXPECT_EQ(fakeTimers.begin()->second.first, 30u);
    timer->stop();
    EXPECT_TRUE(fakeTimers.empty());
}

TEST_F(Timer, does_not_tick_for_a_message_that_comes_after_it_was_stopped) {
    timer->start(nullptr, 100);
    const auto [id, call] = running();
    timer->stop();
    call(nullptr, WM_TIMER, id, 0);
    EXPECT_EQ(ticks, 0);
}

TEST_F(Timer, does_not_tick_for_a_message_that_comes_after_its_end) {
    timer->start(nullptr, 100);
    const auto [id, call] = running();
    timer.reset();
    EXPECT_TRUE(fakeTimers.empty());
    call(nullptr, WM_TIMER, id, 0);
    EXPECT_EQ(ticks, 0);
}

TEST_F(Timer, may_be_stopped_and_started_from_its_own_tick) {
    timer.emplace(faultyWindowApi, [this] {
        timer->stop();
        if (++ticks == 1)
            timer->start(nullptr, 7);
    });
    timer->start(nullptr, 100);
    tickTimers();
    ASSERT_EQ(fakeTimers.size(), 1u);
    EXPECT_EQ(fakeTimers.begin()->second.first, 7u);
    tickTimers();
    EXPECT_TRUE(fakeTimers.empty());
    EXPECT_EQ(ticks, 2);
}

TEST_F(Timer, ticks_with_the_messages_of_a_real_window) {
    const HiddenWindow window;
    WindowTimer real(systemWindowApi, [this] { ++ticks; });
    real.start(window.handle(), 10);
    EXPECT_EQ(ticks, 0);
    EXPECT_TRUE(pumpUntil([this] { return ticks >= 2; }));
    real.stop();
    const int before = ticks;
    ::Sleep(30);
    dispatchWaitingMessages();
    EXPECT_EQ(ticks, before);
}

std::vector<HWND> stoppedAt;
BOOL WINAPI noteStop(HWND window, UINT_PTR id) {
    stoppedAt.push_back(window);
    return faulty::killTimer(window, id);
}

TEST_F(Timer, is_stopped_at_the_window_where_it_runs) {
    const HiddenWindow window;
    WindowApi api = faultyWindowApi;
    api.killTimer = &noteStop;
    timer.emplace(api, [this] { ++ticks; });
    timer->start(window.handle(), 100);
    stoppedAt.clear();
    timer->stop();
    EXPECT_EQ(stoppedAt, std::vector<HWND>{window.handle()});
    timer.reset();
}

} // namespace
} // namespace corvina::test
