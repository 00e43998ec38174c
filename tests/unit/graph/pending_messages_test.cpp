#include "graph/PendingMessages.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

// A thousand ticks a second; the time stands still unless a test moves it.
LONGLONG ticks;
BOOL WINAPI thousandTicks(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1000;
    return TRUE;
}
BOOL WINAPI tellTicks(LARGE_INTEGER* count) {
    count->QuadPart = ticks;
    return TRUE;
}
constexpr PerformanceCounterApi counter{&thousandTicks, &tellTicks};

int waiting() {
    MSG message;
    int count = 0;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        ++count;
    return count;
}

void post(int count) {
    for (int i = 0; i < count; ++i)
        ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
}

class Pending : public testing::Test {
protected:
    Pending() { (void)waiting(); } // a thread has a queue once it has asked for a message
};

TEST_F(Pending, messages_that_wait_are_taken) {
    PendingMessages pending(counter);
    post(7);
    pending.handle();
    EXPECT_EQ(waiting(), 0);
}

TEST_F(Pending, a_crowd_is_taken_in_parts) {
    PendingMessages pending(counter);
    post(150);
    pending.handle();
    EXPECT_EQ(waiting(), 50);
}

TEST_F(Pending, what_is_left_of_a_crowd_is_taken_at_once_the_next_time) {
    PendingMessages pending(counter);
    post(150);
    pending.handle();
    pending.handle();
    EXPECT_EQ(waiting(), 0);
}

TEST_F(Pending, an_empty_queue_is_not_asked_again_within_the_millisecond) {
    PendingMessages pending(counter);
    pending.handle();
    post(1);
    pending.handle();
    EXPECT_EQ(waiting(), 1);
    post(1);
    ++ticks;
    pending.handle();
    EXPECT_EQ(waiting(), 0);
}

TEST_F(Pending, a_message_to_quit_is_put_back_and_ends_the_handling) {
    PendingMessages pending(counter);
    ::PostQuitMessage(3);
    pending.handle();
    post(1);
    pending.handle();
    MSG message{};
    bool posted = false, quit = false;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        posted |= message.message == WM_APP;
        if (message.message == WM_QUIT) {
            quit = true;
            EXPECT_EQ(message.wParam, 3U);
        }
    }
    EXPECT_TRUE(posted);
    EXPECT_TRUE(quit);
}

} // namespace
} // namespace corvina
