#include "player/PlaybackEngine.h"

#include "player/ErrorText.h"
#include "player/ExceptionReport.h"
#include "player/PlayerEvents.h"
#include "runtime/RuntimeError.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

namespace corvina {
namespace {

constexpr std::int32_t conversionImpossible = 5;

} // namespace

PlaybackEngine::PlaybackEngine(PlayerEvents& events, TrackSupply& supply,
                               const PlaybackOptions& options, const PlayerPlatform& platform)
    : events_(events), supply_(supply), options_(options), trace_(platform.trace),
      messages_(platform.windows), output_(platform.wave),
      watchTimer_(platform.windows, [this] { onTimer(&PlaybackEngine::watch); }),
      positionTimer_(platform.windows, [this] { onTimer(&PlaybackEngine::reportPosition); }),
      life_(events) {}

PlaybackEngine::~PlaybackEngine() {
    disconnect();
}

// The only place that changes the state.
void PlaybackEngine::enter(PlaybackState next) noexcept {
    const PlaybackState former = std::exchange(state_, next);
    life_.setDeviceClosed(playback_, next == PlaybackState::closed);
    if (trace_ && former != next)
        trace_(former, next);
}

void PlaybackEngine::stopFeeding() noexcept {
    if (state_ == PlaybackState::feeding)
        enter(PlaybackState::draining);
}

bool PlaybackEngine::uses(const cSoundSTRM* source) const noexcept {
    return (playing() || !done_) && tracks_.uses(source);
}

bool PlaybackEngine::playing() const noexcept {
    return state_ == PlaybackState::feeding || state_ == PlaybackState::draining ||
           state_ == PlaybackState::closing;
}

void PlaybackEngine::connect(HWND window) noexcept {
    messages_.setWindow(window);
    done_ = true;
}

void PlaybackEngine::disconnect() noexcept {
    if (state_ != PlaybackState::closed)
        static_cast<void>(closeAtOnce());
    messages_.discardReturned();
    while (messages_.discardClose())
        ;
    stopTimers();
    messages_.setWindow(nullptr);
    abandonTracks();
    done_ = true;
}

void PlaybackEngine::reportEnds() noexcept {
    try {
        life_.endAll(PLAYEND_STOPPED);
    } catch (const std::bad_alloc&) {
        // The events are lost.
    }
}

std::int32_t PlaybackEngine::start(std::int32_t deviceIndex, TrackQueue::Track track) {
    const WAVEFORMATEX sourceFormat = track->sourceFormat();
    const bool closedFormer = closeFormerDevice();
    ++playback_;
    ++session_;
    // Of a playback whose close message has not come. A start that failed leaves a track whose
    // source may be the new one's.
    if (!tracks_.uses(track->source()))
        abandonTracks();
    // The converter of a start that fails stays until the next start or stop.
    const bool convertible = track->begin();
    tracks_.begin(std::move(track));
    if (!convertible) {
        events_.Err(L"InitConversion", conversionImpossible, L"Can't init conversion");
        return conversionImpossible;
    }
    deviceIndex_ = deviceIndex;
    if (const std::int32_t result = openSession(deviceIndex, sourceFormat); result != 0)
        return result;
    if (closedFormer)
        messages_.discardClose();
    paused_ = false;
    done_ = false;
    startTimers();
    const std::uint32_t session = session_;
    life_.begun(playback_);
    if (session == session_ && !primed_)
        endUnprimed();
    return 0;
}

// A device whose close failed when its playback ended gets a second try, or it would be lost.
// Whether it is closed now: the host still waits for the DonePlay of that playback, and unless
// another one begins now, the close message brings it.
bool PlaybackEngine::closeFormerDevice() noexcept {
    if (state_ == PlaybackState::closed)
        return false;
    const bool closed = closeAtOnce();
    messages_.discardReturned();
    return closed;
}

// Opens the device for the current track and has the ring filled. If the device fails, nothing of
// it is left, and its result is returned.
std::int32_t PlaybackEngine::openSession(std::int32_t deviceIndex, const WAVEFORMATEX& format) {
    ++session_;
    SentSamples silence = SentSamples::silence();
    MMRESULT result =
        output_.open(deviceIndex, *tracks_.current(), format, options_.sound, messages_.window());
    if (result != MMSYSERR_NOERROR)
        return static_cast<std::int32_t>(result);
    enter(PlaybackState::opening);
    result = output_.prepare();
    if (result != MMSYSERR_NOERROR) {
        abandonSession();
        return static_cast<std::int32_t>(result);
    }
    sent_ = std::move(silence);
    drained_ = 0;
    lost_ = 0;
    untried_ = false;
    const BOOL posted = messages_.postReturned(
        WaveRing::playedBuffers, reinterpret_cast<LPARAM>(&output_.ring().first().header));
    if (posted != TRUE && posted != FALSE) {
        abandonSession();
        return posted;
    }
    // A refused post returns 0, and that is the result for the host, to which it means success: it
    // gets a playback that ends at once, with its DonePlay, and not one that hangs.
    primed_ = posted == TRUE;
    enter(PlaybackState::feeding);
    return 0;
}

// The host is notified of the failure by the result alone: no message of this device may follow.
void PlaybackEngine::abandonSession() noexcept {
    const bool closed = closeAtOnce();
    messages_.discardReturned();
    if (closed)
        messages_.discardClose();
}

void PlaybackEngine::endUnprimed() {
    messages_.discardReturned();
    stopFeeding();
    if (state_ == PlaybackState::draining)
        closeDrained();
}

void PlaybackEngine::handleMessage(UINT message) noexcept {
    const std::uint32_t session = session_;
    try {
        if (message == MM_WOM_DONE)
            bufferReturned();
        else if (message == MM_WOM_CLOSE)
            deviceClosed();
    } catch (...) {
        stopFeeding();
        life_.setReason(playback_, PLAYEND_ERROR);
        reportCurrentException(events_);
        failPlayback(session);
    }
}

void PlaybackEngine::bufferReturned() {
    const std::uint32_t session = session_;
    output_.noteProgress();
    if (state_ != PlaybackState::feeding || !refill()) {
        if (session == session_)
            countDrained();
    }
    if (session == session_ && playing())
        reportHeard();
}

// Fills and queues the next buffer. False if that was not done because the playback was stopped, so
// that the buffer counts as returned.
bool PlaybackEngine::refill() {
    const std::uint32_t session = session_;
    // A handler of Err can have stopped this playback, or stopped it and begun another.
    const auto stopped = [&] { return !tracks_.current() || session != session_; };
    const auto failed = [this](const wchar_t* function, MMRESULT result) {
        const auto number = static_cast<std::int32_t>(result);
        events_.Err(function, number, errorText(number));
    };

    WaveBuffer& buffer = output_.ring().next();
    MMRESULT result = output_.device().unprepare(buffer.header);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutUnprepareHeader", result);
        if (stopped())
            return false;
    }
    fill(buffer);
    result = output_.device().prepare(buffer.header);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutPrepareHeader", result);
        if (stopped())
            return false;
    }
    // A buffer that the device refuses never comes back. The ring goes on without it, and the count
    // at the end stays short of eight, so that the device is not closed. Hosts know this: a
    // DonePlay without all of the sound would be a different promise.
    result = output_.device().write(buffer.header);
    if (result == MMSYSERR_NOERROR) {
        untried_ = false;
    } else {
        ++lost_;
        failed(L"WindowProcOut:waveOutWrite", result);
        // Without any buffer no message would ever come again.
        if (session == session_ && lost_ == WaveRing::playedBuffers && playing())
            loseDevice();
    }
    if (session == session_)
        supply_.reportFailures();
    return true;
}

void PlaybackEngine::fill(WaveBuffer& buffer) {
    const std::span<std::uint8_t> bytes = buffer.bytes();
    // A handler may have let the playback come to its end before this buffer had its turn.
    if (state_ == PlaybackState::feeding) {
        const bool exactly = options_.cleanEnd || options_.loops || !options_.nextFile.empty();
        const TrackQueue::Filled filled =
            tracks_.fill(bytes, {.loops = options_.loops, .exactly = exactly, .next = [this] {
                                     return supply_.takeNext();
                                 }});
        if (filled.ended)
            stopFeeding();
        // The header keeps its full length even for the last, short block: what lies behind the
        // delivered bytes, from the buffer's former use, is heard too. Devices have always been
        // given whole blocks here; only CleanEnd makes the rest silent.
        if (options_.cleanEnd)
            std::fill(bytes.begin() + filled.bytes, bytes.end(), output_.format().silence());
    }
    output_.ring().applySettings(buffer);
    sent_.set(buffer.data);
}

void PlaybackEngine::countDrained() {
    if (state_ != PlaybackState::draining)
        return;
    if (++drained_ == WaveRing::playedBuffers) {
        const std::uint32_t session = session_;
        reportHeard();
        if (session == session_ && state_ == PlaybackState::draining)
            closeDrained();
    } else if (drained_ + lost_ == WaveRing::playedBuffers) {
        life_.end(playback_, PLAYEND_ERROR);
    }
}

void PlaybackEngine::deviceClosed() {
    try {
        if (continueWithOther())
            return;
        // Done is still clear, so this resets a device that is closed, which the device layer
        // refuses with 5. The Err before every DonePlay is on purpose: hosts take it for the sign
        // of the end. A playback started before this message was handled is stopped by it.
        stop();
    } catch (...) {
        reportCurrentException(events_);
        tracks_.forget();
    }
    done_ = true;
    events_.DonePlay();
    life_.raiseDue();
}

// The next track has another format: the device that played the former one is closed, and it gets
// one of its own.
bool PlaybackEngine::continueWithOther() {
    if (state_ != PlaybackState::closed || done_ || !tracks_.other())
        return false;
    const TrackQueue::Track other = tracks_.takeOther();
    tracks_.close();
    const WAVEFORMATEX format = other->sourceFormat();
    tracks_.begin(other);
    const std::int32_t result = openSession(deviceIndex_, format);
    if (result != 0) {
        life_.setReason(playback_, PLAYEND_ERROR);
        supply_.giveBack(other);
        events_.Err(L"StartPlayAudio:waveOutOpen", result, std::to_wstring(result));
        return false;
    }
    if (!primed_)
        endUnprimed();
    supply_.nextHeard(other);
    events_.NextStarted(other->file());
    return true;
}

bool PlaybackEngine::latestSamples(SampleBlock& block) const {
    return playing() && sent_.copyTo(block, output_.format());
}

} // namespace corvina
