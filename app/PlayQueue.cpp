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
    if (index >= files_.size())
        return;
    if (playing_ && index == current_)
        stop();
    files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(index));
    if (index < current_)
        --current_;
    if (following_ && index < *following_)
        --*following_;
}

void PlayQueue::clear() {
    stop();
    files_.clear();
    current_ = 0;
}

void PlayQueue::play(std::size_t index, long atSecond) {
    startSecond_ = atSecond;
    active_ = true;
    if (playing_)
        stopThen(index);
    else
        startFrom(index);
}

void PlayQueue::stop() {
    if (playing_)
        stopThen(std::nullopt);
}

void PlayQueue::next() {
    if (playing_)
        stopThen(current_ + 1);
}

void PlayQueue::previous() {
    if (playing_)
        stopThen(current_ > 0 ? current_ - 1 : 0);
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

void PlayQueue::stopThen(std::optional<std::size_t> following) {
    following_ = following;
    if (deadline_)
        return; // is being stopped already
    deadline_ = Clock::now() + stopPatience;
    player_.stop();
}

// Plays the first file from there on that can be played.
void PlayQueue::startFrom(std::size_t index) {
    for (current_ = index; current_ < files_.size(); ++current_)
        if (start(files_[current_]))
            return;
    end();
}

bool PlayQueue::start(const std::wstring& file) {
    deadline_.reset();
    following_ = current_ + 1;
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
    if (following_)
        startFrom(*following_);
    else
        end();
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
        stopThen(following_); // the block is lost, perhaps the device with it
}

void PlayQueue::report(const std::wstring& words) const {
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
