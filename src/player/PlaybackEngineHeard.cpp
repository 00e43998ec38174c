// What the playback engine knows of the sound that is heard: its place, its level, and whether the
// device plays at all.

#include "player/ExceptionReport.h"
#include "player/PlaybackEngine.h"
#include "player/PlayerEvents.h"
#include "runtime/RuntimeError.h"

#include <algorithm>

namespace corvina {
namespace {

constexpr UINT watchIntervalMs = 100;

} // namespace

TrackQueue::Place PlaybackEngine::heard() {
    const bool runs = (playing() || !done_) && tracks_.current();
    return runs ? tracks_.placeAt(output_.heardFrame()) : TrackQueue::Place{};
}

std::int32_t PlaybackEngine::heardMs() {
    const TrackQueue::Place place = heard();
    const std::int32_t duration = place.track ? place.track->durationMs() : 0;
    return duration > 0 ? std::min(place.milliseconds, duration) : place.milliseconds;
}

double PlaybackEngine::level(std::int32_t channel) {
    return playing() ? output_.level(channel) : 0;
}

void PlaybackEngine::soundChanged() {
    if (playing())
        output_.setSettings(options_.sound);
}

void PlaybackEngine::intervalChanged() noexcept {
    if (done_ && !playing())
        return;
    if (options_.positionInterval > 0)
        positionTimer_.start(messages_.window(), static_cast<UINT>(options_.positionInterval));
    else
        positionTimer_.stop();
}

void PlaybackEngine::startTimers() noexcept {
    watchTimer_.start(messages_.window(), watchIntervalMs);
    intervalChanged();
}

void PlaybackEngine::stopTimers() noexcept {
    watchTimer_.stop();
    positionTimer_.stop();
}

void PlaybackEngine::jump(std::int32_t milliseconds) {
    const std::uint32_t session = session_;
    // A next file that is heard already is not given back as the next one.
    if (playing())
        reportHeard();
    if (session != session_)
        return;
    const bool running = state_ == PlaybackState::feeding || state_ == PlaybackState::draining;
    const TrackQueue::Track track = running ? heard().track : nullptr;
    if (!track)
        return;
    if (!track->seek(milliseconds))
        throwInvalidCall();
    giveBackUnheard();
    tracks_.restart(track);
    // Buffers that were returned while nothing was fed have no message any more.
    const std::size_t idle = state_ == PlaybackState::draining ? drained_ : 0;
    drained_ = 0;
    enter(PlaybackState::feeding);
    output_.restart(paused_);
    static_cast<void>(
        messages_.postReturned(idle, reinterpret_cast<LPARAM>(&output_.ring().first().header)));
    // The messages of the buffers that were dropped wait in the queue; the new sound must not.
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i)
        if (session == session_ && playing() && messages_.discardOneReturned())
            handleMessage(MM_WOM_DONE);
}

void PlaybackEngine::sourceMoved(const cSoundSTRM& source, std::int32_t seconds) {
    if (const TrackQueue::Track& track = tracks_.current(); track && track->source() == &source)
        track->sourceMoved(seconds);
}

// Raises NextStarted for the tracks whose first frame has been heard.
void PlaybackEngine::reportHeard() {
    if (!tracks_.waitsForNext())
        return;
    const std::uint32_t session = session_;
    for (const TrackQueue::Track& track : tracks_.startedUntil(output_.heardFrame())) {
        supply_.nextHeard(track);
        events_.NextStarted(track->file());
        if (session != session_)
            return;
    }
}

void PlaybackEngine::onTimer(void (PlaybackEngine::*task)()) noexcept {
    // A handler may release the owner of all this.
    PlayerEvents& owner = events_;
    owner.hold();
    const std::uint32_t session = session_;
    try {
        if (playing())
            (this->*task)();
        else
            stopTimers();
    } catch (...) {
        stopFeeding();
        life_.setReason(playback_, PLAYEND_ERROR);
        reportCurrentException(events_);
        failPlayback(session);
    }
    owner.letGo();
}

void PlaybackEngine::watch() {
    const std::uint32_t session = session_;
    const bool messagesDue =
        state_ == PlaybackState::draining && drained_ + lost_ < WaveRing::playedBuffers;
    if (output_.stalled(paused_, messagesDue)) {
        // Without a buffer in the device it is the messages that are lost: a host's loop drops
        // them.
        if (output_.ring().anyQueued())
            loseDevice();
        else
            closeDrained();
    }
    if (session == session_ && playing())
        reportHeard();
}

// The place in a next file is reported behind its NextStarted.
void PlaybackEngine::reportPosition() {
    const std::uint32_t session = session_;
    reportHeard();
    if (session == session_ && playing() && !paused_ && heard().track)
        events_.PositionChanged(heardMs());
}

} // namespace corvina
