#include "player/PlaybackEngine.h"

#include "player/ErrorText.h"
#include "player/ExceptionReport.h"
#include "player/PlayerEvents.h"
#include "stream/cSoundSTRM.h"

#include <string>
#include <utility>

namespace corvina {
namespace {

// What AudioDataOut shows before the first refill.
constexpr std::size_t samplesBeforeFirstRefill = 1024;
constexpr UINT headerBytes = sizeof(WAVEHDR);
constexpr std::int32_t conversionImpossible = 5;

} // namespace

PlaybackEngine::PlaybackEngine(PlayerEvents& events, cCallback* observer, cSoundSTRM* const& source,
                               const PlayerPlatform& platform) noexcept
    : events_(events), observer_(observer), source_(source), wave_(platform.wave),
      acm_(platform.acm), trace_(platform.trace), messages_(platform.windows) {}

PlaybackEngine::~PlaybackEngine() {
    disconnect();
}

// The only place that changes the state.
void PlaybackEngine::enter(PlaybackState next) noexcept {
    const PlaybackState former = std::exchange(state_, next);
    if (trace_ && former != next)
        trace_(former, next);
}

void PlaybackEngine::stopFeeding() noexcept {
    if (state_ == PlaybackState::feeding)
        enter(PlaybackState::draining);
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
    messages_.setWindow(nullptr);
    converter_.reset();
    done_ = true;
}

std::int32_t PlaybackEngine::start(std::int32_t deviceIndex, WAVEFORMATEX format) {
    const bool closedFormer = closeFormerDevice();
    ++playback_;
    if (!beginConversion()) {
        events_.Err(L"InitConversion", conversionImpossible, L"Can't init conversion");
        return conversionImpossible;
    }
    // Everything that needs memory comes before the device is opened.
    ring_ = std::make_unique<WaveRing>();
    std::vector<std::int16_t> silence(samplesBeforeFirstRefill);
    // Without a window that listens nothing would ever fill the ring, so the device is not opened.
    if (!messages_.window())
        return MMSYSERR_INVALPARAM;
    if (const MMRESULT opened = openDevice(deviceIndex, format); opened != MMSYSERR_NOERROR)
        return static_cast<std::int32_t>(opened);
    if (const MMRESULT prepared = ring_->prepare(wave_, device_); prepared != MMSYSERR_NOERROR) {
        abandonStart();
        return static_cast<std::int32_t>(prepared);
    }
    audioData_ = std::move(silence);

    const BOOL primed = messages_.postReturned(WaveRing::playedBuffers,
                                               reinterpret_cast<LPARAM>(&ring_->first().header));
    if (primed != TRUE && primed != FALSE) {
        abandonStart();
        return primed;
    }
    if (closedFormer)
        messages_.discardClose();
    paused_ = false;
    done_ = false;
    drained_ = 0;
    if (primed == TRUE) {
        enter(PlaybackState::feeding);
    } else {
        // A refused post returns 0, and that is the result for the host, to which it means success:
        // it gets a playback that ends at once, with its DonePlay, and not one that hangs.
        messages_.discardReturned();
        closeDrained();
    }
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

bool PlaybackEngine::beginConversion() {
    converter_ = std::make_unique<cPCM>(acm_);
    return source_ && converter_->InitConversion(*source_, observer_, false);
}

MMRESULT PlaybackEngine::openDevice(std::int32_t deviceIndex, WAVEFORMATEX format) noexcept {
    // Block align and average rate stay the source's even if the converter changes the width. This
    // mixed record is on purpose: it is what devices have always been opened with here. They go by
    // the width and accept it.
    format.nSamplesPerSec = static_cast<DWORD>(converter_->OutputSamplerate());
    format.nChannels = static_cast<WORD>(converter_->OutputChannels());
    format.wBitsPerSample = static_cast<WORD>(converter_->OutputBitsPerSample());
    const DWORD mapping = deviceIndex == -1 ? 0 : WAVE_MAPPED;
    HWAVEOUT opened = nullptr;
    const MMRESULT result = wave_.outOpen(&opened, static_cast<UINT>(deviceIndex), &format,
                                          reinterpret_cast<DWORD_PTR>(messages_.window()), 0,
                                          CALLBACK_WINDOW | mapping);
    if (result == MMSYSERR_NOERROR) {
        device_ = opened;
        enter(PlaybackState::opening);
    }
    return result;
}

// The host is notified of the failure by the result alone: no message of this device may follow.
void PlaybackEngine::abandonStart() noexcept {
    const bool closed = closeAtOnce();
    messages_.discardReturned();
    if (closed)
        messages_.discardClose();
}

void PlaybackEngine::handleMessage(UINT message) noexcept {
    const std::uint32_t playback = playback_;
    try {
        if (message == MM_WOM_DONE)
            bufferReturned();
        else if (message == MM_WOM_CLOSE)
            deviceClosed();
    } catch (...) {
        stopFeeding();
        reportCurrentException(events_);
        failPlayback(playback);
    }
}

void PlaybackEngine::bufferReturned() {
    const std::uint32_t playback = playback_;
    if (state_ == PlaybackState::feeding && refill())
        return;
    if (playback == playback_)
        countDrained();
}

// Fills and queues the next buffer. False if that was not done because the playback was stopped, so
// that the buffer counts as returned.
bool PlaybackEngine::refill() {
    const std::uint32_t playback = playback_;
    // A handler of Err can have stopped this playback, or stopped it and begun another.
    const auto stopped = [&] { return !converter_ || playback != playback_; };
    const auto failed = [this](const wchar_t* function, MMRESULT result) {
        const auto number = static_cast<std::int32_t>(result);
        events_.Err(function, number, errorText(number));
    };

    WaveBuffer& buffer = ring_->next();
    MMRESULT result = wave_.outUnprepareHeader(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutUnprepareHeader", result);
        if (stopped())
            return false;
    }
    // The header keeps its full length even for the last, short block: what lies behind the
    // delivered bytes, from the buffer's former use, is heard too. Devices have always been given
    // whole blocks here.
    std::int32_t delivered = 0;
    converter_->GetSamples(buffer.data.data(), WaveRing::bufferBytes, delivered);
    // The converter meets the end of the source up to half a second before its last sample has its
    // turn, so EndOfStream alone would cut the file short.
    if (converter_->Exhausted())
        stopFeeding();
    // Made while the former copy still exists, so that it has another address.
    audioData_ = std::vector<std::int16_t>(buffer.data);

    result = wave_.outPrepareHeader(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutPrepareHeader", result);
        if (stopped())
            return false;
    }
    // A buffer that the device refuses never comes back. The ring goes on without it, and the count
    // at the end stays short of eight, so that the device is not closed. Hosts know this: a
    // DonePlay without all of the sound would be a different promise.
    result = wave_.outWrite(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR)
        failed(L"WindowProcOut:waveOutWrite", result);
    return true;
}

void PlaybackEngine::countDrained() {
    if (state_ == PlaybackState::draining && ++drained_ == WaveRing::playedBuffers)
        closeDrained();
}

// Closes a device that has no buffer any more.
void PlaybackEngine::closeDrained() {
    const std::uint32_t playback = playback_;
    // A handler of Err can have closed the device.
    const auto closed = [&] { return state_ == PlaybackState::closed || playback != playback_; };
    enter(PlaybackState::closing);
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i) {
        // Always the spare record, which was never prepared, and not buffer i. This is on purpose:
        // the buffers keep their prepared state until the device is closed, as drivers have come to
        // expect.
        const auto result = static_cast<std::int32_t>(
            wave_.outUnprepareHeader(device_, &ring_->spare().header, headerBytes));
        if (result == MMSYSERR_NOERROR)
            continue;
        events_.Err(L"StopPlayProc:waveOutUnprepareHeader :hdr(" + std::to_wstring(i) + L")",
                    result, errorText(result));
        if (closed())
            return;
    }
    const auto result = static_cast<std::int32_t>(wave_.outClose(device_));
    if (result == MMSYSERR_NOERROR) {
        device_ = nullptr;
        enter(PlaybackState::closed);
        return;
    }
    events_.Err(L"StopPlayProc:waveOutClose", result, std::to_wstring(result));
    if (!closed())
        enter(PlaybackState::closeRefused);
}

void PlaybackEngine::deviceClosed() {
    try {
        // Done is still clear, so this resets a device that is closed, which the device layer
        // refuses with 5. The Err before every DonePlay is on purpose: hosts take it for the sign
        // of the end. A playback started before this message was handled is stopped by it.
        stop();
    } catch (...) {
        reportCurrentException(events_);
        converter_.reset();
    }
    done_ = true;
    events_.DonePlay();
}

std::int32_t PlaybackEngine::stop() {
    if (done_)
        return 0;
    const std::int32_t result = resetDevice();
    dropConversion();
    return result;
}

std::int32_t PlaybackEngine::resetDevice() {
    stopFeeding();
    const auto result = static_cast<std::int32_t>(wave_.outReset(device_));
    // A handler that responds to this event with PlayStop comes here again: it gets its result, but
    // not the same event without end.
    const FailedReset failed{playback_, device_};
    if (result != MMSYSERR_NOERROR && reported_ != failed) {
        const FailedReset outer = std::exchange(reported_, failed);
        events_.Err(L"StopPlayAudio:waveOutReset", result, std::to_wstring(result));
        reported_ = outer;
    }
    return result;
}

void PlaybackEngine::dropConversion() {
    // A playback that a handler of the reset's Err has begun ends with the one that is stopped.
    stopFeeding();
    if (source_)
        source_->CloseSource();
    if (converter_)
        converter_->CloseConverter();
    converter_.reset();
}

std::int32_t PlaybackEngine::pause() noexcept {
    const auto result = static_cast<std::int32_t>(wave_.outPause(device_));
    if (result == MMSYSERR_NOERROR)
        paused_ = true;
    return result;
}

std::int32_t PlaybackEngine::resume() noexcept {
    const auto result = static_cast<std::int32_t>(wave_.outRestart(device_));
    if (result == MMSYSERR_NOERROR)
        paused_ = false;
    return result;
}

// Ends a playback in which something was thrown, without waiting for its buffers: the one being
// refilled will not come back. The close message follows as at every end.
void PlaybackEngine::failPlayback(std::uint32_t playback) {
    const auto over = [&] { return playback != playback_ || state_ == PlaybackState::closed; };
    if (over())
        return;
    try {
        resetDevice();
        if (over())
            return;
        messages_.discardReturned();
        if (state_ == PlaybackState::draining)
            enter(PlaybackState::closing);
        dropConversion();
    } catch (...) {
        // The source could not be closed either; it is closed when it is opened again.
        converter_.reset();
    }
    static_cast<void>(closeAtOnce());
}

// Closes the device without events and without waiting for its buffers. Whether it accepted that,
// so that its close message comes.
bool PlaybackEngine::closeAtOnce() noexcept {
    wave_.outReset(device_);
    ring_->unprepare(wave_, device_);
    const bool closed = wave_.outClose(device_) == MMSYSERR_NOERROR;
    // A device that refuses to close may still read the buffers: they are left to it.
    if (!closed)
        static_cast<void>(ring_.release());
    device_ = nullptr;
    enter(PlaybackState::closed);
    return closed;
}

} // namespace corvina
