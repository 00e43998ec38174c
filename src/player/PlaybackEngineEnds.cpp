// The ways in which the playback engine stops and closes its device.

#include "player/ErrorText.h"
#include "player/PlaybackEngine.h"
#include "player/PlayerEvents.h"

#include <string>
#include <utility>

namespace corvina {

// Closes a device that has no buffer any more.
void PlaybackEngine::closeDrained() {
    const std::uint32_t session = session_;
    // A handler of Err can have closed the device.
    const auto closed = [&] { return state_ == PlaybackState::closed || session != session_; };
    enter(PlaybackState::closing);
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i) {
        // Always the spare record, which was never prepared, and not buffer i. This is on purpose:
        // the buffers keep their prepared state until the device is closed, as drivers have come to
        // expect.
        const auto result =
            static_cast<std::int32_t>(output_.device().unprepare(output_.ring().spare().header));
        if (result == MMSYSERR_NOERROR)
            continue;
        events_.Err(L"StopPlayProc:waveOutUnprepareHeader :hdr(" + std::to_wstring(i) + L")",
                    result, errorText(result));
        if (closed())
            return;
    }
    const auto result = static_cast<std::int32_t>(output_.device().close());
    if (result == MMSYSERR_NOERROR) {
        enter(PlaybackState::closed);
        return;
    }
    events_.Err(L"StopPlayProc:waveOutClose", result, std::to_wstring(result));
    if (closed())
        return;
    enter(PlaybackState::closeRefused);
    life_.end(playback_, PLAYEND_ERROR);
}

std::int32_t PlaybackEngine::stop() {
    if (done_)
        return 0;
    if (state_ != PlaybackState::closed)
        life_.setReason(playback_, PLAYEND_STOPPED);
    const std::int32_t result = resetDevice();
    dropTracks();
    return result;
}

std::int32_t PlaybackEngine::resetDevice() {
    stopFeeding();
    const auto result = static_cast<std::int32_t>(output_.device().reset());
    // A handler that responds to this event with PlayStop comes here again: it gets its result, but
    // not the same event without end.
    const FailedReset failed{.session = session_, .device = output_.device().handle()};
    if (result != MMSYSERR_NOERROR && reported_ != failed) {
        const FailedReset outer = std::exchange(reported_, failed);
        events_.Err(L"StopPlayAudio:waveOutReset", result, std::to_wstring(result));
        reported_ = outer;
    }
    return result;
}

void PlaybackEngine::dropTracks() {
    // A playback that a handler of the reset's Err has begun ends with the one that is stopped.
    if (state_ == PlaybackState::feeding)
        life_.setReason(playback_, PLAYEND_STOPPED);
    stopFeeding();
    giveBackUnheard();
    tracks_.close();
}

// What is left of a playback that ends without its close message.
void PlaybackEngine::abandonTracks() noexcept {
    try {
        giveBackUnheard();
        tracks_.close();
    } catch (...) {
        // A source that could not be closed is closed when it is opened again or destroyed.
        tracks_.forget();
    }
}

void PlaybackEngine::giveBackUnheard() {
    for (const TrackQueue::Track& track : tracks_.unheard())
        supply_.giveBack(track);
}

std::int32_t PlaybackEngine::pause() noexcept {
    const auto result = static_cast<std::int32_t>(output_.device().pause());
    if (result == MMSYSERR_NOERROR) {
        paused_ = true;
        life_.setPaused(true);
    }
    return result;
}

std::int32_t PlaybackEngine::resume() noexcept {
    const auto result = static_cast<std::int32_t>(output_.device().resume());
    if (result == MMSYSERR_NOERROR) {
        paused_ = false;
        output_.noteProgress();
        life_.setPaused(false);
    }
    return result;
}

// Ends a playback in which something was thrown, without waiting for its buffers: the one being
// refilled will not come back. The close message follows as at every end, also if the device
// refuses to close.
void PlaybackEngine::failPlayback(std::uint32_t session) {
    const auto over = [&] { return session != session_ || state_ == PlaybackState::closed; };
    if (over())
        return;
    try {
        resetDevice();
        if (over())
            return;
        messages_.discardReturned();
        if (state_ == PlaybackState::draining)
            enter(PlaybackState::closing);
        dropTracks();
    } catch (...) {
        // The source could not be closed either; it is closed when it is opened again.
        tracks_.forget();
    }
    if (!closeAtOnce() && !messages_.postClose())
        deviceClosed();
}

// Closes the device without events and without waiting for its buffers. Whether it accepted that,
// so that its close message comes.
bool PlaybackEngine::closeAtOnce() noexcept {
    const bool closed = output_.closeAtOnce();
    enter(PlaybackState::closed);
    return closed;
}

// The device is gone: it plays nothing and returns nothing. With Recover the playback goes on where
// it was heard last, otherwise it ends as if the device had closed. A device that takes nothing
// from the beginning is not replaced by itself: that would never end.
void PlaybackEngine::loseDevice() {
    const TrackQueue::Place place = heard();
    const bool closed = closeAtOnce();
    messages_.discardReturned();
    if (options_.recovers && !untried_ && place.track && recover(place)) {
        if (closed)
            messages_.discardClose();
        return;
    }
    life_.setReason(playback_, PLAYEND_DEVICE_LOST);
    if (!closed)
        static_cast<void>(messages_.postClose());
}

bool PlaybackEngine::recover(const TrackQueue::Place& place) {
    constexpr std::int32_t systemsChoice = -1;
    if (!place.track->seek(place.milliseconds))
        return false;
    giveBackUnheard();
    tracks_.restart(place.track);
    if (openSession(systemsChoice, place.track->sourceFormat()) != 0)
        return false;
    deviceIndex_ = systemsChoice;
    untried_ = true;
    if (paused_)
        output_.device().pause();
    if (!primed_)
        endUnprimed();
    return true;
}

} // namespace corvina
