#include "platform/BoundedThread.h"

#include "support/ProcessObjects.h"

#include <atomic>
#include <gtest/gtest.h>
#include <objbase.h>

namespace corvina::test {
namespace {

constexpr DWORD longEnough = 10'000;

// Shared by a test and the jobs that it leaves behind.
struct Gate {
    HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Gate() = default;
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate() { ::CloseHandle(event); }
    void wait() const { ::WaitForSingleObject(event, INFINITE); }
    void open() const { ::SetEvent(event); }
};

bool comesTrue(const std::atomic<bool>& flag) {
    for (int waits = 0; !flag && waits < 1000; ++waits)
        ::Sleep(5);
    return flag;
}

TEST(BoundedThread, jobs_run_in_order_on_one_other_thread_and_are_waited_for) {
    DWORD first = 0;
    DWORD second = 0;
    BoundedThread thread(longEnough, [] {});
    EXPECT_TRUE(thread.run([&first] { first = ::GetCurrentThreadId(); }));
    EXPECT_TRUE(thread.run([&second] { second = ::GetCurrentThreadId(); }));
    EXPECT_NE(first, 0u);
    EXPECT_NE(first, ::GetCurrentThreadId());
    EXPECT_EQ(first, second);
}

TEST(BoundedThread, the_last_action_runs_on_the_thread_before_its_owner_is_gone) {
    DWORD worker = 0;
    DWORD last = 0;
    {
        BoundedThread thread(longEnough, [&last] { last = ::GetCurrentThreadId(); });
        EXPECT_TRUE(thread.run([&worker] { worker = ::GetCurrentThreadId(); }));
    }
    EXPECT_EQ(last, worker);
}

TEST(BoundedThread, jobs_are_in_the_multithreaded_apartment) {
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    BoundedThread thread(longEnough, [] {});
    EXPECT_TRUE(thread.run([&] { ::CoGetApartmentType(&type, &qualifier); }));
    EXPECT_EQ(type, APTTYPE_MTA);
}

// As when the process exits: the system ends the other threads first.
TEST(BoundedThread, a_thread_that_was_ended_is_not_waited_for) {
    BoundedThread thread(INFINITE, [] {});
    EXPECT_FALSE(thread.run([] { ::ExitThread(0); }));
    EXPECT_FALSE(thread.run([] {}));
}

TEST(BoundedThread, what_a_job_holds_is_released_on_the_thread) {
    DWORD released = 0;
    const auto note = [&released](int* number) {
        delete number;
        released = ::GetCurrentThreadId();
    };
    BoundedThread thread(longEnough, [] {});
    DWORD worker = 0;
    EXPECT_TRUE(thread.run([held = std::shared_ptr<int>(new int(1), note), &worker] {
        worker = ::GetCurrentThreadId();
    }));
    EXPECT_EQ(released, worker);
}

TEST(BoundedThread, a_job_beyond_the_limit_is_given_up_and_no_other_starts) {
    const auto gate = std::make_shared<Gate>();
    BoundedThread thread(600, [] {});
    const DWORD start = ::GetTickCount();
    EXPECT_FALSE(thread.run([gate] { gate->wait(); }));
    const DWORD given = ::GetTickCount();
    EXPECT_GE(given - start, 590u);
    bool ran = false;
    EXPECT_FALSE(thread.run([&ran] { ran = true; }));
    EXPECT_LT(::GetTickCount() - given, 500u) << "it is not waited for again";
    gate->open();
    ::Sleep(50);
    EXPECT_FALSE(ran);
}

TEST(BoundedThread, a_job_that_comes_back_late_ends_the_thread_with_its_last_action) {
    const auto gate = std::make_shared<Gate>();
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    {
        BoundedThread thread(50, [ended] { *ended = true; });
        EXPECT_FALSE(thread.run([gate] { gate->wait(); }));
    }
    EXPECT_FALSE(*ended);
    gate->open();
    EXPECT_TRUE(comesTrue(*ended));
}

TEST(BoundedThread, a_last_action_beyond_the_limit_is_left_behind) {
    const auto gate = std::make_shared<Gate>();
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    {
        // The job has time on a busy machine, too.
        BoundedThread thread(700, [gate, ended] {
            gate->wait();
            *ended = true;
        });
        EXPECT_TRUE(thread.run([] {}));
    }
    EXPECT_FALSE(*ended);
    gate->open();
    EXPECT_TRUE(comesTrue(*ended));
}

// As the system's own parts do when a thread ends.
struct SlowEnd {
    std::atomic<bool>* ended = nullptr;
    SlowEnd() = default;
    SlowEnd(const SlowEnd&) = delete;
    SlowEnd& operator=(const SlowEnd&) = delete;
    ~SlowEnd() {
        if (!ended)
            return;
        ::Sleep(500);
        *ended = true;
    }
};
thread_local SlowEnd slowEnd;

TEST(BoundedThread, the_end_of_a_thread_that_has_done_its_last_action_is_waited_for_longer) {
    std::atomic<bool> ended = false;
    {
        BoundedThread thread(450, [] {});
        EXPECT_TRUE(thread.run([&ended] { slowEnd.ended = &ended; }));
    }
    EXPECT_TRUE(ended);
}

TEST(BoundedThread, a_job_without_memory_throws_where_it_was_wanted_and_the_next_runs) {
    BoundedThread thread(longEnough, [] {});
    EXPECT_THROW((void)thread.run([] { throw std::bad_alloc(); }), std::bad_alloc);
    bool ran = false;
    EXPECT_TRUE(thread.run([&ran] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(BoundedThread, ten_leave_no_handle) {
    constexpr std::intptr_t lowest = 0x800;
    const auto makeSome = [](int count) {
        for (int made = 0; made < count; ++made) {
            BoundedThread thread(longEnough, [] {});
            EXPECT_TRUE(thread.run([] {}));
        }
        return countKernelHandles(lowest);
    };
    const int handles = makeSome(2);
    EXPECT_LE(makeSome(10), handles + 2);
}

TEST(BoundedThread, a_thousand_leave_no_handle) {
    const auto makeSome = [](int count) {
        for (int made = 0; made < count; ++made) {
            BoundedThread thread(longEnough, [] {});
            EXPECT_TRUE(thread.run([] {}));
        }
        return countKernelHandles();
    };
    const int handles = makeSome(10);
    EXPECT_LE(makeSome(1000), handles + 2);
}

} // namespace
} // namespace corvina::test
