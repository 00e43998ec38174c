#pragma once

// A thread that does one job after another for the thread that made it, which waits for the end of
// each, but no longer than a limit. For calls of the system that a damaged file may keep for ever.
//
// A job that takes longer is left behind with the thread, which keeps this module loaded until it
// ends. So a job has shares of all that it uses, and no references. The threads are in the
// multi-threaded apartment.

#include "platform/UniqueHandle.h"

#include <functional>
#include <memory>
#include <windows.h>

namespace corvina {

class BoundedThread {
public:
    // atEnd: the last thing that the thread does, also when it was left behind and comes back. What
    // it holds is let go of there.
    BoundedThread(DWORD milliseconds, std::function<void()> atEnd);
    BoundedThread(const BoundedThread&) = delete;
    BoundedThread& operator=(const BoundedThread&) = delete;
    ~BoundedThread();

    // Does the job. False if there is no thread, or if the job took longer than the limit: then all
    // further calls return false at once. If the job finds no memory, std::bad_alloc is thrown
    // here.
    [[nodiscard]] bool run(std::function<void()> job);

private:
    struct Shared;
    struct HandleTraits {
        using Handle = HANDLE;
        static constexpr Handle none = nullptr;
        static void close(Handle handle) noexcept { ::CloseHandle(handle); }
    };
    using OwnedHandle = UniqueHandle<HandleTraits>;

    [[nodiscard]] bool waitUntilDone() const noexcept;
    static HMODULE work(void* parameter) noexcept;
    static DWORD WINAPI threadMain(void* parameter);

    DWORD limit_;
    std::shared_ptr<Shared> shared_; // null once the thread is left behind
    OwnedHandle thread_;
};

} // namespace corvina
