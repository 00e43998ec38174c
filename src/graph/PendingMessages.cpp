#include "graph/PendingMessages.h"

#include "com/HandlerCall.h"

namespace corvina {
namespace {

constexpr int mostAtOnce = 100;

} // namespace

PendingMessages::PendingMessages(const PerformanceCounterApi& counter) noexcept
    : counter_(counter) {
    LARGE_INTEGER frequency{};
    counter_.frequency(&frequency);
    ticksPerMillisecond_ = frequency.QuadPart / 1000;
}

void PendingMessages::handle() noexcept {
    if (quitting_ || now() < nextQuery_)
        return;
    MSG message;
    for (int i = 0; i < mostAtOnce; ++i) {
        if (!::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            nextQuery_ = now() + ticksPerMillisecond_;
            return;
        }
        if (message.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(message.wParam));
            quitting_ = true;
            return;
        }
        ::TranslateMessage(&message);
        callHandler([&] { ::DispatchMessageW(&message); });
    }
}

LONGLONG PendingMessages::now() const noexcept {
    LARGE_INTEGER count{};
    counter_.count(&count);
    return count.QuadPart;
}

} // namespace corvina
