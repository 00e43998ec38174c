// What the queue does when the control reports that something has happened, and what it prepares
// for the end of the track that plays.

#include "ErrorWords.h"
#include "PlayQueue.h"

#include <algorithm>

namespace corvina::app {

namespace {

// Often enough for a moving bar; a track that ends in the middle of its file is watched closer.
constexpr long positionIntervalMs = 33;
constexpr long watchedIntervalMs = 10;

// The control could not go on with the next file. The queue tries to start that one when the end of
// the present one has come, and then the reason is reported for the right track.
bool concernsNextFile(const ErrorEvent& event) {
    return event.function == L"NextFile" || event.function == L"StartPlayAudio:waveOutOpen";
}

} // namespace

PlayerHandlers PlayQueue::playerHandlers() {
    PlayerHandlers handlers;
    handlers.err = [this](const ErrorEvent& event) { onErr(event); };
    handlers.ended = [this](PlayEndReason reason) { onEnded(reason); };
    handlers.stateChanged = [this](PlayState) {
        if (handlers_.stateChanged)
            handlers_.stateChanged();
    };
    handlers.positionChanged = [this](long fileMs) { onPosition(fileMs); };
    handlers.nextStarted = [this](const std::wstring& file) { onNextStarted(file); };
    return handlers;
}

std::optional<std::size_t> PlayQueue::planned() const {
    return plannedId_ ? list_.indexOf(*plannedId_) : std::nullopt;
}

// Chooses what follows the track that plays, and has the control join it if it is a file's
// beginning behind a file's end. A shuffled list keeps its choice while that is there.
void PlayQueue::plan() {
    if (!isPlaying() || current_ >= list_.size())
        return;
    std::optional<std::size_t> following = list_.shuffled() ? planned() : std::nullopt;
    if (!following)
        following = list_.after(current_);
    plannedId_ = following ? std::optional(list_.idOf(*following)) : std::nullopt;
    const bool joins = following && track().endMs == 0 && list_.tracks()[*following].startMs == 0;
    player_.setNextFile(joins ? list_.tracks()[*following].file : std::wstring());
    player_.setLooping(looping_ && track().isWholeFile());
    player_.setPositionInterval(track().endMs > 0 ? watchedIntervalMs : positionIntervalMs);
}

// Another track of the list is heard without a new start.
void PlayQueue::continueWith(std::size_t index) {
    current_ = index;
    list_.markPlayed(index);
    list_.setFailure(index, {});
    plannedId_.reset();
    plan();
    if (handlers_.started)
        handlers_.started();
}

void PlayQueue::onNextStarted(const std::wstring& file) {
    if (!isPlaying())
        return;
    const std::vector<Track>& tracks = list_.tracks();
    std::optional<std::size_t> index = planned();
    // The list was changed after the control had taken the file.
    if (!index || tracks[*index].file != file) {
        const auto found = std::ranges::find(tracks, Track(file));
        if (found == tracks.end())
            return next();
        index = static_cast<std::size_t>(found - tracks.begin());
    }
    continueWith(*index);
}

void PlayQueue::onPosition(long fileMs) {
    if (!isPlaying())
        return;
    if (track().endMs > 0 && fileMs >= track().endMs) {
        const std::optional<std::size_t> following = planned();
        if (looping_)
            seekTo(0);
        else if (following && track().runsInto(list_.tracks()[*following]))
            continueWith(*following);
        else
            stopThen(Then::next);
    }
    if (isPlaying() && handlers_.progressed)
        handlers_.progressed();
}

void PlayQueue::onEnded(PlayEndReason reason) {
    if (!playing_)
        return;
    playing_ = false;
    if (reason == PLAYEND_DEVICE_LOST) {
        // Every other track would fail on it, too.
        notice(L"The output device was lost.");
        remember(comFailure);
        return end();
    }
    const bool ended = !deadline_ && reason == PLAYEND_FINISHED;
    deadline_.reset();
    if (then_ == Then::nothing)
        return end();
    if (then_ == Then::chosen)
        return startFrom(chosen_);
    if (ended && looping_ && current_ < list_.size())
        return startFrom(current_);
    std::optional<std::size_t> following = planned();
    if (!following && current_ < list_.size())
        following = list_.after(current_);
    startFrom(following.value_or(list_.size()));
}

void PlayQueue::onErr(const ErrorEvent& event) {
    if (isExpectedAtEnd(event) || concernsNextFile(event)) {
        if (handlers_.remarked)
            handlers_.remarked(describe(event));
        return;
    }
    errSeen_ = true;
    report(describe(event));
    if (!playing_)
        return; // a start that fails returns its result
    remember(event.number);
    if (event.function == L"WindowProcOut:waveOutWrite")
        stopThen(then_, chosen_); // the block is lost, perhaps the device with it
}

// The track keeps the reason, too: the last words about it say most.
void PlayQueue::report(const std::wstring& words) {
    list_.setFailure(current_, words);
    if (handlers_.failed)
        handlers_.failed(words);
}

void PlayQueue::notice(const std::wstring& words) {
    if (handlers_.noticed)
        handlers_.noticed(words);
}

void PlayQueue::remember(long result) noexcept {
    if (result_ == 0)
        result_ = result;
}

void PlayQueue::end() {
    active_ = false;
    deadline_.reset();
    if (handlers_.ended)
        handlers_.ended();
}

} // namespace corvina::app
