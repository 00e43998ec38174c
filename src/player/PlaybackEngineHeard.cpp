// What the playback engine knows of the sound that is heard: its place, its level, and whether the
// device plays at all.

#include "player/ExceptionReport.h"
#include "player/PlaybackEngine.h"
#include "player/PlayerEvents.h"
#include "runtime/RuntimeError.h"

#include <algorithm>

namespace corvina {
namespace {

// What a change of the sound leaves alone behind the device's position: a driver may have fetched
// so much already.
constexpr std::int64_t fetchedMs = 20;
constexpr std::int64_t levelMs = 20;
// A device that has blocks and plays none of them for so long is lost.
constexpr std::uint64_t lostAfterMs = 850;
constexpr UINT watchIntervalMs = 100;

} // namespace

std::int64_t PlaybackEngine::heardFrame() noexcept {
    const std::int64_t frame = device_.position(format_);
    return ring_ ? std::min(frame, ring_->filledFrames()) : frame;
}

TrackQueue::Place PlaybackEngine::heard() {
    const bool runs = (playing() || !done_) && tracks_.current();
    return runs ? tracks_.placeAt(heardFrame()) : TrackQueue::Place{};
}

double PlaybackEngine::level(std::int32_t channel) {
    if (!ring_ || !playing() || format_.channels == 0)
        return 0;
    return ring_->peak(std::min(channel, format_.channels - 1), heardFrame(),
                       format_.framesOf(levelMs));
}

void PlaybackEngine::soundChanged() {
    if (ring_ && playing())
        ring_->setSettings(options_.sound, heardFrame() + format_.framesOf(fetchedMs));
}

void PlaybackEngine::intervalChanged() noexcept {
    if (done_ && !playing())
        return;
    const auto wished = static_cast<UINT>(options_.positionInterval);
    timer_.start(messages_.window(), wished == 0 ? watchIntervalMs : wished);
}

void PlaybackEngine::jump(std::int32_t milliseconds) {
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
    ring_->restart();
    watchedFrame_ = 0;
    device_.reset();
    if (paused_)
        device_.pause();
    static_cast<void>(
        messages_.postReturned(idle, reinterpret_cast<LPARAM>(&ring_->first().header)));
    // The messages of the buffers that were dropped wait in the queue; the new sound must not.
    const std::uint32_t session = session_;
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i)
        if (session == session_ && playing() && messages_.discardOneReturned())
            handleMessage(MM_WOM_DONE);
}

// Raises NextStarted for the tracks whose first frame has been heard.
void PlaybackEngine::reportHeard() {
    if (!tracks_.waitsForNext())
        return;
    const std::uint32_t session = session_;
    for (const TrackQueue::Track& track : tracks_.startedUntil(heardFrame())) {
        supply_.nextHeard(track);
        events_.NextStarted(track->file());
        if (session != session_)
            return;
    }
}

void PlaybackEngine::tick() noexcept {
    const std::uint32_t session = session_;
    try {
        if (!playing()) {
            timer_.stop();
            return;
        }
        watchDevice();
        if (session == session_ && playing())
            reportHeard();
        if (session == session_ && playing() && !paused_ && options_.positionInterval > 0)
            if (const TrackQueue::Place place = heard(); place.track)
                events_.PositionChanged(place.milliseconds);
    } catch (...) {
        stopFeeding();
        life_.setReason(playback_, PLAYEND_ERROR);
        reportCurrentException(events_);
        failPlayback(session);
    }
}

void PlaybackEngine::watchDevice() {
    const std::int64_t frame = heardFrame();
    const std::uint64_t now = ::GetTickCount64();
    const bool waits = ring_->anyQueued() && !(paused_ && device_.responds());
    if (!waits || frame != watchedFrame_) {
        watchedFrame_ = frame;
        progressAt_ = now;
    } else if (now - progressAt_ >= lostAfterMs) {
        loseDevice();
    }
}

} // namespace corvina
