#include "MessageLoop.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace corvina::app {

void pumpMessages(std::span<const HANDLE> handles, DWORD timeoutMs,
                  const std::function<bool(MSG&)>& handled) {
    std::vector<HANDLE> waited;
    std::copy_if(handles.begin(), handles.end(), std::back_inserter(waited),
                 [](HANDLE handle) { return handle != nullptr; });
    MsgWaitForMultipleObjectsEx(static_cast<DWORD>(waited.size()), waited.data(), timeoutMs,
                                QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (handled && handled(message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

} // namespace corvina::app
