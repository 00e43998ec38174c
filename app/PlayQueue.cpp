#include "PlayQueue.h"

#include "DecoderLibraries.h"
#include "ErrorWords.h"

#include <algorithm>
#include <mmsystem.h>
#include <utility>

namespace corvina::app {

namespace {

constexpr auto stopPatience = std::chrono::seconds(5);

} // namespace

PlayQueue::PlayQueue(QueueHandlers handlers)
    : handlers_(std::move(handlers)), player_(playerHandlers()) {
    player_.setCleanEnd(true);
    player_.setRecover(true);
}

void PlayQueue::add(Track track) {
    list_.add(std::move(track));
    plan();
}

// Another track takes the place of one that is removed while it plays, until its end has come.
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
    plan();
}

void PlayQueue::move(std::size_t from, std::size_t to) {
    if (from >= list_.size() || to >= list_.size())
        return;
    list_.move(from, to);
    current_ = PlayList::movedIndex(current_, from, to);
    chosen_ = PlayList::movedIndex(chosen_, from, to);
    plan();
}

void PlayQueue::clear() {
    stop();
    list_.clear();
    current_ = 0;
}

void PlayQueue::setShuffled(bool on) {
    list_.setShuffled(on);
    plannedId_.reset();
    plan();
}

void PlayQueue::setRepeated(bool on) {
    list_.setRepeated(on);
    plan();
}

void PlayQueue::setLooping(bool on) {
    looping_ = on;
    plan();
}

void PlayQueue::play(std::size_t index, long atMs) {
    startMs_ = atMs;
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

void PlayQueue::stopThen(Then then, std::size_t chosen) {
    then_ = then;
    chosen_ = chosen;
    if (deadline_)
        return; // is being stopped already
    deadline_ = Clock::now() + stopPatience;
    player_.stop();
}

void PlayQueue::tick() {
    if (!playing_ || !deadline_ || Clock::now() <= *deadline_)
        return;
    report(L"The device did not finish playing; giving up.");
    playing_ = false; // the end that this raises comes too early for a new start
    player_.abandon();
    playing_ = true;
    onEnded(PLAYEND_STOPPED);
}

// Plays the first track from there on that can be played. A repeated list is tried once, not for
// ever.
void PlayQueue::startFrom(std::size_t index) {
    current_ = index;
    for (std::size_t tries = list_.size(); tries > 0 && current_ < list_.size(); --tries) {
        list_.markPlayed(current_);
        const Track wanted = track();
        if (start(wanted))
            return;
        current_ = list_.after(current_).value_or(list_.size());
    }
    current_ = std::min(current_, list_.size());
    end();
}

bool PlayQueue::start(const Track& wanted) {
    deadline_.reset();
    then_ = Then::next;
    errSeen_ = false;
    plannedId_.reset();
    const long atMs = std::exchange(startMs_, 0);
    long result = 0;
    try {
        result = startOn(wanted.file);
    } catch (const _com_error& error) {
        errSeen_ = true;
        report(describe(error));
        result = comFailure;
    }
    if (result != 0) {
        // The control has reported its own failures by Err; a device's come as a result alone.
        if (!errSeen_)
            report(describeResult(result, player_.errorText(result)));
        if (const std::wstring words = missingLibraryWords(result, wanted.file); !words.empty())
            report(words);
        remember(result);
        return false;
    }
    playing_ = true;
    list_.setFailure(current_, {});
    plan();
    skipTo(wanted.startMs + std::max(0L, atMs));
    if (!deadline_ && handlers_.started)
        handlers_.started();
    return true;
}

// Starts on the chosen device, or on the system's choice if that one is not there.
long PlayQueue::startOn(const std::wstring& file) {
    player_.setNextFile({});
    player_.setDevice(deviceName_);
    const long result = player_.start(file, device_);
    if (result != MMSYSERR_BADDEVICEID || device_ != -1 || deviceName_.empty())
        return result;
    notice(deviceName_ + L" is not there; the system's choice plays.");
    player_.setDevice({});
    return player_.start(file, device_);
}

// Nothing has been read yet, so the first sound comes from there.
void PlayQueue::skipTo(long fileMs) {
    if (fileMs == 0)
        return;
    try {
        player_.jumpTo(fileMs);
    } catch (const _com_error& error) {
        if (track().startMs == 0)
            return notice(describe(error));
        // Not this track, but another part of its file would be heard.
        report(describe(error));
        remember(comFailure);
        stopThen(Then::next);
    }
}

void PlayQueue::togglePause() {
    if (!isPlaying())
        return;
    if (player_.isPaused())
        player_.goOn();
    else
        player_.pause();
}

void PlayQueue::seekTo(long milliseconds) {
    if (!isPlaying())
        return;
    try {
        player_.jumpTo(track().startMs + std::clamp(milliseconds, 0L, durationMs()));
    } catch (const _com_error& error) {
        notice(describe(error));
    }
    if (handlers_.progressed)
        handlers_.progressed();
}

void PlayQueue::seekBy(long milliseconds) {
    if (isPlaying())
        seekTo(positionMs() + milliseconds);
}

long PlayQueue::positionMs() {
    return isPlaying() ? std::max(0L, player_.positionMs() - track().startMs) : 0;
}

long PlayQueue::durationMs() {
    if (!isPlaying())
        return 0;
    const long end = track().endMs > 0 ? track().endMs : player_.durationMs();
    return std::max(0L, end - track().startMs);
}

} // namespace corvina::app
