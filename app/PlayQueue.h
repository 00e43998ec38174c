#pragma once

// A list of files, played one after the other through one player control.
//
// The control's events, which come with the messages of this thread, start the next file. tick()
// gives up on a device that never finishes. Handlers may call the queue.

#include "PlayList.h"
#include "PlayerClient.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
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

    [[nodiscard]] const std::vector<std::wstring>& files() const noexcept { return list_.files(); }
    // Why a file of the list could not be played; empty if nothing is known against it.
    [[nodiscard]] const std::wstring& failure(std::size_t index) const {
        return list_.failure(index);
    }
    // The file that plays, or would be played next; files().size() after the last.
    [[nodiscard]] std::size_t current() const noexcept { return current_; }
    void add(std::wstring file) { list_.add(std::move(file)); }
    void remove(std::size_t index);
    void clear();
    // Takes a file from one place of the list to another; what plays is not interrupted.
    void move(std::size_t from, std::size_t to);
    // In any order, each file once; and from the beginning again after the last.
    void setShuffled(bool on) { list_.setShuffled(on); }
    void setRepeated(bool on) noexcept { list_.setRepeated(on); }
    [[nodiscard]] bool shuffled() const noexcept { return list_.shuffled(); }
    [[nodiscard]] bool repeated() const noexcept { return list_.repeated(); }

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

    // What begins when the present playback has ended.
    enum class Then { next, nothing, chosen };

    void stopThen(Then then, std::size_t chosen = 0);
    void startFrom(std::size_t index);
    bool start(const std::wstring& file);
    void onDonePlay();
    void onErr(const ErrorEvent& event);
    void report(const std::wstring& words);
    void remember(long result) noexcept;
    void end();

    QueueHandlers handlers_;
    PlayList list_;
    std::size_t current_ = 0;
    long device_ = -1;
    long startSecond_ = 0;

    bool active_ = false;
    bool playing_ = false; // from a successful start to DonePlay
    Then then_ = Then::nothing;
    std::size_t chosen_ = 0;                    // for Then::chosen
    std::optional<Clock::time_point> deadline_; // for DonePlay, once a stop was requested
    bool errSeen_ = false;                      // since the latest start
    long result_ = 0;

    PlayerClient player_; // last: its handlers use what is above
};

} // namespace corvina::app
