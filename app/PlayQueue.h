#pragma once

// A list of tracks, played one after the other through one player control: without a gap where the
// control can (NextFile), otherwise each started when the one before has ended.
//
// Everything happens in the control's events, which come with the messages of this thread; tick()
// gives up on a device that does not finish. Times are in milliseconds of the track. Handlers may
// call the queue.

#include "PlayList.h"
#include "PlayerClient.h"
#include "QueueHandlers.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvina::app {

class PlayQueue {
public:
    explicit PlayQueue(QueueHandlers handlers);

    [[nodiscard]] const std::vector<Track>& tracks() const noexcept { return list_.tracks(); }
    // Why a track could not be played; empty if nothing is known against it.
    [[nodiscard]] const std::wstring& failure(std::size_t index) const {
        return list_.failure(index);
    }
    // The track that plays, or would be played next; tracks().size() after the last.
    [[nodiscard]] std::size_t current() const noexcept { return current_; }
    void add(Track track);
    void remove(std::size_t index);
    void clear();
    // Takes a track from one place of the list to another; what plays is not interrupted.
    void move(std::size_t from, std::size_t to);
    // In any order, each track once; from the beginning again after the last; and one track again
    // and again.
    void setShuffled(bool on);
    void setRepeated(bool on);
    void setLooping(bool on);
    [[nodiscard]] bool shuffled() const noexcept { return list_.shuffled(); }
    [[nodiscard]] bool repeated() const noexcept { return list_.repeated(); }
    [[nodiscard]] bool looping() const noexcept { return looping_; }

    // Both take effect at the next start. 0-based; -1 is the device of the name that is set.
    void setDevice(long device) noexcept { device_ = device; }
    // Empty for the system's choice, which is also taken while there is no device of that name.
    void setDeviceName(const std::wstring& name) { deviceName_ = name; }

    // Plays that track, from a time on, and those after it. What plays is stopped first.
    void play(std::size_t index, long atMs = 0);
    void stop();
    void next();
    void previous();
    void togglePause();
    void seekTo(long milliseconds);
    void seekBy(long milliseconds);

    // Of the track that plays; 0 when none does.
    [[nodiscard]] long positionMs();
    [[nodiscard]] long durationMs();

    // Call it several times a second while isActive().
    void tick();

    // From play() until ended was called.
    [[nodiscard]] bool isActive() const noexcept { return active_; }
    // While a track plays or is paused; not while it is being stopped.
    [[nodiscard]] bool isPlaying() const noexcept { return playing_ && !deadline_; }

    // The control's result for the first track that could not be played to its end, else 0.
    [[nodiscard]] long result() const noexcept { return result_; }

    [[nodiscard]] PlayerClient& player() noexcept { return player_; }

private:
    using Clock = std::chrono::steady_clock;

    // What begins when the present playback has ended.
    enum class Then { next, nothing, chosen };

    PlayerHandlers playerHandlers();
    void stopThen(Then then, std::size_t chosen = 0);
    void startFrom(std::size_t index);
    bool start(const Track& track);
    long startOn(const std::wstring& file);
    void skipTo(long fileMs);
    void continueWith(std::size_t index);
    void plan();
    [[nodiscard]] std::optional<std::size_t> planned() const;
    [[nodiscard]] const Track& track() const { return list_.tracks()[current_]; }

    void onEnded(PlayEndReason reason);
    void onErr(const ErrorEvent& event);
    void onPosition(long fileMs);
    void onNextStarted(const std::wstring& file);
    void report(const std::wstring& words);
    void notice(const std::wstring& words);
    void remember(long result) noexcept;
    void end();

    QueueHandlers handlers_;
    PlayList list_;
    std::size_t current_ = 0;
    std::optional<std::uint32_t> plannedId_; // of the track that follows the one that plays
    bool looping_ = false;
    long device_ = -1;
    std::wstring deviceName_;
    long startMs_ = 0; // at which the next start begins in its track

    bool active_ = false;
    bool playing_ = false; // from a successful start to its end
    Then then_ = Then::nothing;
    std::size_t chosen_ = 0;                    // for Then::chosen
    std::optional<Clock::time_point> deadline_; // for the end, once it was requested
    bool errSeen_ = false;                      // since the latest start
    long result_ = 0;

    PlayerClient player_; // last: its handlers use what is above
};

} // namespace corvina::app
