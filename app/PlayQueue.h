#pragma once

// A list of files, played one after the other through one player control.
//
// The control's events, which come with the messages of this thread, start the next file. tick()
// gives up on a device that never finishes. Handlers may call the queue.

#include "PlayerClient.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvina::app {

struct QueueHandlers {
    std::function<void()> started; // the current file plays from now on
    std::function<void()> ended;   // nothing plays any more, and nothing follows
    std::function<void(const std::wstring& words)> failed;
    std::function<void(const std::wstring& words)> remarked; // has no consequence
};

class PlayQueue {
public:
    explicit PlayQueue(QueueHandlers handlers);

    [[nodiscard]] const std::vector<std::wstring>& files() const noexcept { return files_; }
    // The file that plays, or would be played next; files().size() after the last.
    [[nodiscard]] std::size_t current() const noexcept { return current_; }
    void add(std::wstring file) { files_.push_back(std::move(file)); }
    void remove(std::size_t index);
    void clear();

    // Takes effect at the next start. 0-based; -1 is the system's choice.
    void setDevice(long device) noexcept { device_ = device; }

    // Plays that file, from a time in seconds on, and those after it. What plays is stopped first.
    void play(std::size_t index, long atSecond = 0);
    void stop();
    void next();
    void previous();
    void togglePause();
    void seekTo(long second);
    void seekBy(long seconds);

    // Call it several times a second while isActive().
    void tick();

    // From play() until ended was called.
    [[nodiscard]] bool isActive() const noexcept { return active_; }
    // While a file plays or is paused; not while it is being stopped.
    [[nodiscard]] bool isPlaying() const noexcept { return playing_ && !deadline_; }

    // The control's result for the first file that could not be played to its end, else 0.
    [[nodiscard]] long result() const noexcept { return result_; }

    [[nodiscard]] PlayerClient& player() noexcept { return player_; }

private:
    using Clock = std::chrono::steady_clock;

    void stopThen(std::optional<std::size_t> following);
    void startFrom(std::size_t index);
    bool start(const std::wstring& file);
    void onDonePlay();
    void onErr(const ErrorEvent& event);
    void report(const std::wstring& words) const;
    void remember(long result) noexcept;
    void end();

    QueueHandlers handlers_;
    std::vector<std::wstring> files_;
    std::size_t current_ = 0;
    long device_ = -1;
    long startSecond_ = 0;

    bool active_ = false;
    bool playing_ = false;                      // from a successful start to DonePlay
    std::optional<std::size_t> following_;      // what to play after DonePlay
    std::optional<Clock::time_point> deadline_; // for DonePlay, once a stop was requested
    bool errSeen_ = false;                      // since the latest start
    long result_ = 0;

    PlayerClient player_; // last: its handlers use what is above
};

} // namespace corvina::app
