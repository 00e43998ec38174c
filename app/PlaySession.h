#pragma once

// Plays a list of files one after the other, shows how far each is and obeys the keys.
//
// Everything happens on the calling thread, whose messages it pumps: the control's events arrive
// inside run().

#include "ConsoleKeys.h"
#include "ConsoleScreen.h"
#include "Interrupt.h"
#include "Options.h"
#include "PlayerClient.h"

#include <chrono>
#include <optional>

namespace corvina::app {

class PlaySession {
public:
    PlaySession(const Options& options, ConsoleScreen& screen, const Interrupt& interrupt);

    // Returns the control's result for the first file that could not be played whole, else 0;
    // interruptedExit after Ctrl+C.
    long run();

    static constexpr long interruptedExit = 130; // as shells know it

private:
    using Clock = std::chrono::steady_clock;
    // What follows when the present file has ended.
    enum class After { next, previous, leave };

    void startCurrent();
    void waitAndHandle();
    void obey(Key key);
    void endCurrent(After after);
    void moveOn();
    void showProgress();
    void onErr(const ErrorEvent& event);
    void remember(long result);

    const Options& options_;
    ConsoleScreen& screen_;
    const Interrupt& interrupt_;
    ConsoleKeys keys_;

    std::size_t current_ = 0;
    After after_ = After::next;
    bool playing_ = false; // from a successful start to DonePlay
    bool finished_ = false;
    std::optional<Clock::time_point> deadline_; // for DonePlay, once a stop was asked for
    double durationSeconds_ = 0;
    std::wstring durationText_;
    bool errSeen_ = false; // since the present start
    long result_ = 0;

    // Last: its handlers use what is above.
    PlayerClient player_;
};

} // namespace corvina::app
