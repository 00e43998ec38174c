#include "PlayQueue.h"

#include "DecoderLibraries.h"
#include "ErrorWords.h"

#include <algorithm>
#include <utility>

namespace corvina::app {

namespace {

constexpr auto stopPatience = std::chrono::seconds(5);

} // namespace

PlayQueue::PlayQueue(QueueHandlers handlers)
    : handlers_(std::move(handlers)),
      player_({[this] { onDonePlay(); }, [this](const ErrorEvent& event) { onErr(event); }}) {}

void PlayQueue::remove(std::size_t index) {
    if (index >= list_.size())
        return;
    if (playing_ && index == current_)
        stop();
    list_.remove(index);
    if (index < current_)
        --current_;
    if (index < chosen_)
        --chosen_;
}

void PlayQueue::move(std::size_t from, std::size_t to) {
    if (from >= list_.size() || to >= list_.size())
        return;
    list_.move(from, to);
    current_ = PlayList::movedIndex(current_, from, to);
    chosen_ = PlayList::movedIndex(chosen_, from, to);
}

void PlayQueue::clear() {
    stop();
    list_.clear();
    current_ = 0;
}

void PlayQueue::play(std::size_t index, long atSecond) {
    startSecond_ = atSecond;
    active_ = true;
    if (playing_)
        stopThen(Then::chosen, index);
    else
        startFrom(index);
}

void PlayQueue::stop() {
    if (playing_)
        stopThen(Then::nothing);
}

void PlayQueue::next() {
    if (playing_)
        stopThen(Then::next);
}

void PlayQueue::previous() {
    if (playing_)
        stopThen(Then::chosen, list_.before(current_));
}

void PlayQueue::togglePause() {
    if (!isPlaying())
        return;
    if (player_.isPaused())
        player_.goOn();
    else
        player_.pause();
}

void PlayQueue::seekTo(long second) {
    if (isPlaying())
        player_.seek(std::max(0L, second));
}

void PlayQueue::seekBy(long seconds) {
    if (isPlaying())
        seekTo(player_.positionSeconds() + seconds);
}

void PlayQueue::tick() {
    if (!playing_ || !deadline_ || Clock::now() <= *deadline_)
        return;
    // A block that the device refused never comes back, and then no DonePlay comes either.
    report(L"The device did not finish playing; giving up.");
    player_.abandon();
    onDonePlay();
}

void PlayQueue::stopThen(Then then, std::size_t chosen) {
    then_ = then;
    chosen_ = chosen;
    if (deadline_)
        return; // is being stopped already
    deadline_ = Clock::now() + stopPatience;
    player_.stop();
}

// Plays the first file from there on that can be played. A repeated list is tried once, not for
// ever.
void PlayQueue::startFrom(std::size_t index) {
    current_ = index;
    for (std::size_t tries = list_.size(); tries > 0 && current_ < list_.size(); --tries) {
        list_.markPlayed(current_);
        const std::wstring file = list_.files()[current_];
        if (start(file))
            return;
        current_ = list_.after(current_).value_or(list_.size());
    }
    current_ = std::min(current_, list_.size());
    end();
}

bool PlayQueue::start(const std::wstring& file) {
    deadline_.reset();
    then_ = Then::next;
    errSeen_ = false;
    const long second = std::exchange(startSecond_, 0);
    long result = 0;
    try {
        result = player_.start(file, device_);
    } catch (const _com_error& error) {
        errSeen_ = true;
        report(describe(error));
        result = comFailure;
    }
    if (result != 0) {
        // The control has reported its own failures by Err; a device's come as a result alone.
        if (!errSeen_)
            report(describeResult(result, player_.errorText(result)));
        if (const std::wstring words = missingLibraryWords(result, file); !words.empty())
            report(words);
        remember(result);
        return false;
    }
    playing_ = true;
    list_.setFailure(current_, {});
    // Nothing has been read yet, so the first sound comes from there.
    if (second > 0)
        player_.seek(second);
    if (handlers_.started)
        handlers_.started();
    return true;
}

void PlayQueue::onDonePlay() {
    if (!playing_)
        return;
    playing_ = false;
    std::optional<std::size_t> following;
    if (then_ == Then::next)
        following = list_.after(current_);
    else if (then_ == Then::chosen)
        following = chosen_;
    else
        return end();
    startFrom(following.value_or(list_.size()));
}

void PlayQueue::onErr(const ErrorEvent& event) {
    if (isExpectedAtEnd(event)) {
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

// The file keeps the reason, too: the last words about it say most.
void PlayQueue::report(const std::wstring& words) {
    list_.setFailure(current_, words);
    if (handlers_.failed)
        handlers_.failed(words);
}

void PlayQueue::remember(long result) noexcept {
    if (result_ == 0)
        result_ = result;
}

void PlayQueue::end() {
    deadline_.reset();
    active_ = false;
    if (handlers_.ended)
        handlers_.ended();
}

} // namespace corvina::app
