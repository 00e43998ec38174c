#include "player/WaveMessages.h"

namespace corvina {

BOOL WaveMessages::postReturned(std::size_t buffers, LPARAM header) noexcept {
    BOOL posted = TRUE;
    for (std::size_t i = 0; i < buffers && posted == TRUE; ++i)
        posted = windows_.postMessage(window_, MM_WOM_DONE, 0, header);
    return posted;
}

void WaveMessages::discardReturned() noexcept {
    while (discard(MM_WOM_DONE))
        ;
}

bool WaveMessages::postClose() noexcept {
    return windows_.postMessage(window_, MM_WOM_CLOSE, 0, 0) == TRUE;
}

bool WaveMessages::discard(UINT message) noexcept {
    MSG found{};
    if (!window_ ||
        !windows_.peekMessage(&found, window_, message, message, PM_REMOVE | PM_QS_POSTMESSAGE))
        return false;
    // The end of the host's message loop passes every filter: it is put back.
    if (found.message == WM_QUIT)
        windows_.postQuitMessage(static_cast<int>(found.wParam));
    return found.message == message;
}

} // namespace corvina
