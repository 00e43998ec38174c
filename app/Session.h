#pragma once

// One run of the program: the files of the command line in a queue, shown on the terminal and,
// unless it is not wanted, in a window. One thread.

#include "ConsoleScreen.h"
#include "Interrupt.h"
#include "Options.h"
#include "PlayQueue.h"
#include "TerminalFront.h"
#include "window/PlayerWindow.h"

#include <chrono>
#include <memory>

namespace corvina::app {

class Session {
public:
    Session(const Options& options, ConsoleScreen& screen, const Interrupt& interrupt);

    // Returns the control's result for the first file that could not be played to its end, else 0;
    // interruptedExit after Ctrl+C.
    long run();

    static constexpr long interruptedExit = 130; // as shells know it

private:
    QueueHandlers handlers();
    [[nodiscard]] bool leaving() const;
    void savePictureInTime();

    const Options& options_;
    const Interrupt& interrupt_;
    TerminalFront terminal_;
    PlayQueue queue_;
    std::unique_ptr<PlayerWindow> window_;
    bool pictureSaved_ = false;
    std::chrono::steady_clock::time_point started_; // the latest start of a file
};

} // namespace corvina::app
