#include "platform/BoundedThread.h"

#include <array>
#include <new>
#include <objbase.h>
#include <utility>

namespace corvina {

// Between two jobs it is the maker's, during one the thread's.
struct BoundedThread::Shared {
    OwnedHandle wanted = OwnedHandle(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    OwnedHandle done = OwnedHandle(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    std::function<void()> job = {}; // none if the thread is to end
    std::function<void()> atEnd = {};
    bool outOfMemory = false;
    // The thread's use of the module ends with the thread, so that a host that lets go of the
    // module meanwhile does not take the code away from under it.
    HMODULE module = nullptr;

    void doJob() noexcept {
        try {
            job();
        } catch (const std::bad_alloc&) {
            outOfMemory = true;
        }
        job = nullptr;
    }
};

BoundedThread::BoundedThread(DWORD milliseconds, std::function<void()> atEnd)
    : limit_(milliseconds), shared_(std::make_shared<Shared>()) {
    shared_->atEnd = std::move(atEnd);
    auto share = std::make_unique<std::shared_ptr<Shared>>(shared_);
    if (!shared_->wanted || !shared_->done ||
        !::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                              reinterpret_cast<const wchar_t*>(&threadMain), &shared_->module)) {
        shared_.reset();
        return;
    }
    thread_.reset(::CreateThread(nullptr, 0, &threadMain, share.get(), 0, nullptr));
    if (thread_) {
        (void)share.release(); // it is the thread's
    } else {
        ::FreeLibrary(shared_->module);
        shared_.reset();
    }
}

HMODULE BoundedThread::work(void* parameter) noexcept {
    const std::unique_ptr<std::shared_ptr<Shared>> share(
        static_cast<std::shared_ptr<Shared>*>(parameter));
    Shared& shared = **share;
    const bool entered = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    while (::WaitForSingleObject(shared.wanted.get(), INFINITE) == WAIT_OBJECT_0 && shared.job) {
        shared.doJob();
        ::SetEvent(shared.done.get());
    }
    shared.atEnd();
    shared.atEnd = nullptr;
    if (entered)
        ::CoUninitialize();
    const HMODULE module = shared.module;
    ::SetEvent(shared.done.get());
    return module;
}

// Nothing here has a destructor: the call does not come back.
DWORD WINAPI BoundedThread::threadMain(void* parameter) {
    ::FreeLibraryAndExitThread(work(parameter), 0);
}

bool BoundedThread::run(std::function<void()> job) {
    if (!shared_)
        return false;
    shared_->job = std::move(job);
    ::SetEvent(shared_->wanted.get());
    if (!waitUntilDone()) {
        ::SetEvent(shared_->wanted.get()); // for the end, should the job come back
        shared_.reset();
        return false;
    }
    if (std::exchange(shared_->outOfMemory, false))
        throw std::bad_alloc();
    return true;
}

BoundedThread::~BoundedThread() {
    if (!shared_)
        return;
    ::SetEvent(shared_->wanted.get());
    // A host may release its last object while it is itself being unloaded: then no thread can end
    // before this one goes on.
    constexpr DWORD longestExit = 1000;
    if (waitUntilDone())
        ::WaitForSingleObject(thread_.get(), longestExit);
}

// The system ends all other threads of a process that exits: then there is nothing to wait for.
bool BoundedThread::waitUntilDone() const noexcept {
    const std::array<HANDLE, 2> either = {shared_->done.get(), thread_.get()};
    return ::WaitForMultipleObjects(static_cast<DWORD>(either.size()), either.data(), FALSE,
                                    limit_) == WAIT_OBJECT_0;
}

} // namespace corvina
