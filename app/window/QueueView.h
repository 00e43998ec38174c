#pragma once

// What the player window shows of the queue: the list of tracks, title and format of the one that
// plays, its position, and the last failure.

#include "PlayQueue.h"
#include "window/PlayerControls.h"

#include <string>
#include <windows.h>

namespace corvina::app {

class QueueView {
public:
    // window: has the title in its caption. All must outlive this object.
    QueueView(PlayQueue& queue, PlayerControls& controls, HWND window)
        : queue_(queue), controls_(controls), window_(window) {}

    void showTracks();
    void showPosition();
    // Whether it plays or is paused, on the button.
    void showState();
    void showStarted();
    void showEnded();
    void showFailure(const std::wstring& words);
    // Stays until the next track but one, because it comes while a track starts.
    void showNotice(const std::wstring& words);

private:
    PlayQueue& queue_;
    PlayerControls& controls_;
    HWND window_;
    std::wstring notice_;
};

} // namespace corvina::app
