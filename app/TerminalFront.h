#pragma once

// The player on the terminal: shows what plays and how far it is, and carries out the keys.

#include "ConsoleKeys.h"
#include "ConsoleScreen.h"
#include "PlayQueue.h"

#include <string>

namespace corvina::app {

class TerminalFront {
public:
    explicit TerminalFront(ConsoleScreen& screen) : screen_(screen) {}

    void onStarted(PlayQueue& queue);
    void onEnded() { screen_.clearStatus(); }
    void onFailed(const PlayQueue& queue, const std::wstring& words);
    void onRemarked(const std::wstring& words) { screen_.errorLine(words); }

    // Carries out the keys pressed so far and shows the progress. Call it several times a second.
    void tick(PlayQueue& queue);

    [[nodiscard]] bool leaveRequested() const noexcept { return leaveRequested_; }
    [[nodiscard]] HANDLE waitable() const noexcept { return keys_.waitable(); }

private:
    void carryOut(PlayQueue& queue, Key key);
    void showProgress(PlayQueue& queue);

    ConsoleScreen& screen_;
    ConsoleKeys keys_;
    long durationMs_ = 0;
    std::wstring durationText_;
    bool leaveRequested_ = false;
};

} // namespace corvina::app
