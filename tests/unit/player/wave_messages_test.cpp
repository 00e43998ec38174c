// The device's messages in the queue of a window.

#include "player/WaveMessages.h"
#include "support/FaultyWindows.h"
#include "support/HiddenWindow.h"

#include <gtest/gtest.h>
#include <mmsystem.h>

namespace corvina::test {
namespace {

class Messages : public ::testing::Test {
protected:
    Messages() {
        windowFaults.disarm();
        messages.setWindow(window.handle());
    }
    static int countWaiting(UINT message) {
        int count = 0;
        MSG found;
        while (::PeekMessageA(&found, nullptr, message, message, PM_REMOVE))
            ++count;
        return count;
    }

    HiddenWindow window;
    HiddenWindow other;
    WaveMessages messages{faultyWindowApi};
};

TEST_F(Messages, are_posted_as_many_as_there_are_buffers) {
    EXPECT_EQ(messages.postReturned(8, 1234), TRUE);
    EXPECT_EQ(countWaiting(MM_WOM_DONE), 8);
}

TEST_F(Messages, are_not_posted_behind_one_that_was_refused) {
    windowFaults.arm("PostMessage", 3, Faults::Lasting::once, 1400);
    EXPECT_EQ(messages.postReturned(8, 0), 1400);
    EXPECT_EQ(countWaiting(MM_WOM_DONE), 2);
}

TEST_F(Messages, of_this_window_alone_are_discarded) {
    ::PostMessageA(window.handle(), MM_WOM_DONE, 0, 0);
    ::PostMessageA(window.handle(), MM_WOM_DONE, 0, 0);
    ::PostMessageA(window.handle(), MM_WOM_CLOSE, 0, 0);
    ::PostMessageA(other.handle(), MM_WOM_DONE, 0, 0);
    messages.discardReturned();
    EXPECT_EQ(countWaiting(MM_WOM_DONE), 1);
    EXPECT_TRUE(messages.discardClose());
    EXPECT_FALSE(messages.discardClose());
}

TEST_F(Messages, are_neither_posted_nor_found_without_a_window) {
    ::PostMessageA(nullptr, MM_WOM_CLOSE, 0, 0);
    messages.setWindow(nullptr);
    EXPECT_FALSE(messages.discardClose());
    EXPECT_EQ(countWaiting(MM_WOM_CLOSE), 1);
}

TEST_F(Messages, that_end_the_hosts_loop_are_put_back) {
    ::PostQuitMessage(77);
    messages.discardReturned();
    MSG found{};
    ASSERT_TRUE(::PeekMessageA(&found, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(found.wParam, 77u);
}

TEST_F(Messages, of_a_closed_device_are_posted_as_the_device_would) {
    windowLog.clear();
    EXPECT_TRUE(messages.postClose());
    EXPECT_EQ(windowLog, std::vector<std::string>{"Post 956 0 0"});
    EXPECT_TRUE(messages.discardClose());
    windowFaults.arm("PostMessage", 1);
    EXPECT_FALSE(messages.postClose());
    EXPECT_FALSE(messages.discardClose());
}

} // namespace
} // namespace corvina::test
