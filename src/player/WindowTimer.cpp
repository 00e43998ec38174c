#include "player/WindowTimer.h"

#include <new>
#include <set>
#include <utility>

namespace corvina {
namespace {

// The identifiers are addresses. A message of a timer that was stopped meanwhile can still come, so
// only those that are listed here are believed. Players of several threads share the list.
class RunningTimers {
public:
    void add(UINT_PTR id) {
        const Locked locked(lock_);
        ids_.insert(id);
    }
    void remove(UINT_PTR id) noexcept {
        const Locked locked(lock_);
        ids_.erase(id);
    }
    [[nodiscard]] bool contains(UINT_PTR id) noexcept {
        const Locked locked(lock_);
        return ids_.contains(id);
    }

private:
    class Locked {
    public:
        explicit Locked(SRWLOCK& lock) noexcept : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
        Locked(const Locked&) = delete;
        Locked& operator=(const Locked&) = delete;
        ~Locked() { ::ReleaseSRWLockExclusive(&lock_); }

    private:
        SRWLOCK& lock_;
    };

    SRWLOCK lock_ = SRWLOCK_INIT;
    std::set<UINT_PTR> ids_;
};

RunningTimers runningTimers;

} // namespace

WindowTimer::WindowTimer(const WindowApi& windows, std::function<void()> tick)
    : windows_(windows), tick_(std::move(tick)) {}

WindowTimer::~WindowTimer() {
    stop();
}

void WindowTimer::start(HWND window, UINT milliseconds) noexcept {
    try {
        runningTimers.add(reinterpret_cast<UINT_PTR>(this));
    } catch (const std::bad_alloc&) {
        return; // Nothing but the timed events is lost.
    }
    window_ = window;
    running_ = true;
    windows_.setTimer(window, reinterpret_cast<UINT_PTR>(this), milliseconds, &ticked);
}

void WindowTimer::stop() noexcept {
    if (!std::exchange(running_, false))
        return;
    windows_.killTimer(window_, reinterpret_cast<UINT_PTR>(this));
    runningTimers.remove(reinterpret_cast<UINT_PTR>(this));
}

void CALLBACK WindowTimer::ticked(HWND, UINT, UINT_PTR id, DWORD) {
    if (runningTimers.contains(id))
        reinterpret_cast<WindowTimer*>(id)->tick_();
}

} // namespace corvina
