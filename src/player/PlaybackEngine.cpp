#include "player/PlaybackEngine.h"

#include "player/ErrorText.h"
#include "player/PlayerEvents.h"
#include "runtime/RuntimeError.h"
#include "stream/cSoundSTRM.h"

#include <utility>

namespace corvina {
namespace {

constexpr std::int32_t bytesPerBuffer = 8000;
// What AudioDataOut shows before the first refill.
constexpr std::size_t samplesBeforeFirstRefill = 1024;
constexpr UINT headerBytes = sizeof(WAVEHDR);
constexpr std::int32_t conversionImpossible = 5;
static_assert(headerBytes == 32);

// The number and text of the exception being handled, for the Err event.
void reportCurrentException(PlayerEvents& events) noexcept {
    try {
        try {
            throw;
        } catch (const RuntimeError& error) {
            events.Err(L"WindowProcOut", error.number(), error.text());
        } catch (const std::bad_alloc&) {
            events.Err(L"WindowProcOut", 7, L"Out of memory");
        } catch (...) {
            events.Err(L"WindowProcOut", 51, L"Internal error");
        }
    } catch (const std::bad_alloc&) {
        // Not even the report fits into memory; the playback's end tells the host.
    }
}

} // namespace

PlaybackEngine::PlaybackEngine(PlayerEvents& events, cCallback* observer, cSoundSTRM* const& source,
                               const WaveApi& wave, const WindowApi& windows,
                               const AcmApi& acm) noexcept
    : events_(events), observer_(observer), source_(source), wave_(wave), windows_(windows),
      acm_(acm) {}

PlaybackEngine::~PlaybackEngine() {
    Disconnect();
}

std::int32_t PlaybackEngine::StartPlayAudio(std::int32_t deviceIndex, WAVEFORMATEX format) {
    // A device whose close failed when its playback ended gets a second try, or it would be lost.
    // The host still waits for the DonePlay of that playback: unless another one begins now, the
    // close message brings it.
    bool closesFormer = false;
    if (device_) {
        closesFormer = closeDevice();
        discardMessages(CloseMessage::keep);
    }

    ++playback_;
    converter_ = std::make_unique<cPCM>(acm_);
    if (!source_ || !converter_->InitConversion(*source_, observer_, false)) {
        events_.Err(L"InitConversion", conversionImpossible, L"Can't init conversion");
        return conversionImpossible;
    }
    // Block align and average rate stay the source's, also where the converter changes the width:
    // that is the record devices have always been opened with here, and they take it.
    format.nSamplesPerSec = static_cast<DWORD>(converter_->OutputSamplerate());
    format.nChannels = static_cast<WORD>(converter_->OutputChannels());
    format.wBitsPerSample = static_cast<WORD>(converter_->OutputBitsPerSample());

    bufferBytes_ = bytesPerBuffer;
    ring_ = std::make_unique<WaveRing>();

    // Without a window that listens nothing would ever fill the ring, so the device is not opened.
    if (!window_)
        return MMSYSERR_INVALPARAM;
    const DWORD mapping = deviceIndex == -1 ? 0 : WAVE_MAPPED;
    const MMRESULT opened =
        wave_.outOpen(&device_, static_cast<UINT>(deviceIndex), &format,
                      reinterpret_cast<DWORD_PTR>(window_), 0, CALLBACK_WINDOW | mapping);
    if (opened != MMSYSERR_NOERROR) {
        device_ = nullptr;
        return static_cast<std::int32_t>(opened);
    }

    // The host is told of a failure by the result alone: no message of this device may follow.
    const auto abandon = [this]() noexcept {
        const bool closed = closeDevice();
        discardMessages(closed ? CloseMessage::discardOne : CloseMessage::keep);
    };
    try {
        if (const MMRESULT prepared = prepareRing(); prepared != MMSYSERR_NOERROR) {
            abandon();
            return static_cast<std::int32_t>(prepared);
        }
        audioData_.assign(samplesBeforeFirstRefill, 0);
    } catch (...) {
        abandon();
        throw;
    }

    drained_ = 0;
    const BOOL primed = primeRing();
    if (primed != TRUE && primed != FALSE) {
        abandon();
        return primed;
    }
    if (closesFormer)
        static_cast<void>(discardMessage(MM_WOM_CLOSE));
    paused_ = false;
    playing_ = true;
    done_ = false;
    feeding_ = primed == TRUE;
    if (!feeding_) {
        // A refused post answers 0, and that is the result for the host, for whom it means success:
        // it gets a playback that ends at once, with its DonePlay, and not one that hangs.
        discardMessages(CloseMessage::keep);
        drained_ = playedBuffers;
        StopPlayProc();
    }
    return 0;
}

MMRESULT PlaybackEngine::prepareRing() {
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        WaveBuffer& buffer = (*ring_)[i];
        buffer.allocate(bytesPerBuffer, i);
        const MMRESULT result = wave_.outPrepareHeader(device_, &buffer.header, headerBytes);
        if (result != MMSYSERR_NOERROR)
            return result;
    }
    return MMSYSERR_NOERROR;
}

// Posts to our own window what the device would post for eight returned buffers: each message fills
// and queues the next buffer. Answers what the last post answered.
BOOL PlaybackEngine::primeRing() noexcept {
    const auto firstHeader = reinterpret_cast<LPARAM>(&ring_->front().header);
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        const BOOL posted = windows_.postMessage(window_, MM_WOM_DONE, 0, firstHeader);
        if (posted != TRUE)
            return posted;
    }
    return TRUE;
}

void PlaybackEngine::WindowProcOut(UINT message) noexcept {
    const std::uint32_t playback = playback_;
    try {
        if (message == MM_WOM_DONE)
            bufferReturned();
        else if (message == MM_WOM_CLOSE)
            deviceClosed();
    } catch (...) {
        feeding_ = false;
        reportCurrentException(events_);
        failPlayback(playback);
    }
}

void PlaybackEngine::bufferReturned() {
    const std::uint32_t playback = playback_;
    if (feeding_ && refill())
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
    if (!converter_) {
        // Begun while the close message of the playback before was being handled, which dropped
        // the converter.
        feeding_ = false;
        return false;
    }

    current_ = current_ == playedBuffers - 1 ? 0 : current_ + 1;
    // The device returns buffers in the order in which they were queued: it is always this one.
    WaveBuffer& buffer = (*ring_)[current_];
    const auto failed = [this](const wchar_t* where, MMRESULT result) {
        const auto number = static_cast<std::int32_t>(result);
        events_.Err(where, number, errorText(number));
    };

    MMRESULT result = wave_.outUnprepareHeader(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutUnprepareHeader", result);
        if (stopped())
            return false;
    }
    // The header keeps its full length also for the last, short block: what lies behind the
    // delivered bytes is heard too.
    converter_->GetSamples(buffer.data.data(), bufferBytes_, lastReadLength_);
    // The converter meets the end of the source up to half a second before its last sample has its
    // turn, so EndOfStream alone would cut the file short.
    if (converter_->Exhausted())
        feeding_ = false;
    // Made while the former copy still exists, so that it has another address.
    audioData_ = std::vector<std::int16_t>(buffer.data);

    result = wave_.outPrepareHeader(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR) {
        failed(L"WindowProcOut:waveOutPrepareHeader", result);
        if (stopped())
            return false;
    }
    // A buffer that the device refuses never comes back. The ring goes on without it, and the count
    // at the end stays short of eight: this is how the counting has always worked.
    result = wave_.outWrite(device_, &buffer.header, headerBytes);
    if (result != MMSYSERR_NOERROR)
        failed(L"WindowProcOut:waveOutWrite", result);
    return true;
}

void PlaybackEngine::countDrained() {
    if (drained_ < playedBuffers && ++drained_ == playedBuffers)
        StopPlayProc();
}

void PlaybackEngine::deviceClosed() {
    try {
        // Done is still clear, so this resets a device that is closed and the device layer refuses:
        // hosts see that Err before every DonePlay. A playback started before this message was
        // handled is stopped by it.
        PlayStop();
    } catch (...) {
        reportCurrentException(events_);
        converter_.reset();
    }
    done_ = true;
    events_.DonePlay();
}

std::int32_t PlaybackEngine::StopPlayAudio() {
    feeding_ = false;
    const auto result = static_cast<std::int32_t>(wave_.outReset(device_));
    // A handler that answers this event with PlayStop comes here again: it gets its result, but not
    // the same event without end.
    const FailedReset failed{playback_, device_};
    if (result != MMSYSERR_NOERROR && reported_ != failed) {
        const FailedReset outer = std::exchange(reported_, failed);
        events_.Err(L"StopPlayAudio:waveOutReset", result, std::to_wstring(result));
        reported_ = outer;
    }
    return result;
}

void PlaybackEngine::StopPlayProc() {
    const std::uint32_t playback = playback_;
    // A handler of Err can have closed the device.
    const auto closed = [&] { return !device_ || playback != playback_; };
    feeding_ = false;
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        // Always the spare record, which was never prepared, and not buffer i: the buffers keep
        // their prepared state until the device is closed, as drivers have come to expect.
        const auto result = static_cast<std::int32_t>(
            wave_.outUnprepareHeader(device_, &(*ring_)[spareBuffer].header, headerBytes));
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
    } else {
        events_.Err(L"StopPlayProc:waveOutClose", result, std::to_wstring(result));
        if (closed())
            return;
    }
    playing_ = false;
}

std::int32_t PlaybackEngine::PlayStop() {
    if (done_)
        return 0;
    const std::int32_t result = StopPlayAudio();
    dropConversion();
    return result;
}

void PlaybackEngine::dropConversion() {
    if (source_)
        source_->CloseSource();
    if (converter_)
        converter_->CloseConverter();
    converter_.reset();
}

std::int32_t PlaybackEngine::PlayPause() noexcept {
    const auto result = static_cast<std::int32_t>(wave_.outPause(device_));
    if (result == MMSYSERR_NOERROR)
        paused_ = true;
    return result;
}

std::int32_t PlaybackEngine::PlayUnPause() noexcept {
    const auto result = static_cast<std::int32_t>(wave_.outRestart(device_));
    if (result == MMSYSERR_NOERROR)
        paused_ = false;
    return result;
}

// Ends a playback in which something was thrown, without waiting for its buffers: the one being
// refilled will not come back. The close message follows as at every end.
void PlaybackEngine::failPlayback(std::uint32_t playback) {
    if (playback != playback_ || !device_)
        return;
    try {
        StopPlayAudio();
        if (playback != playback_ || !device_)
            return;
        discardMessages(CloseMessage::keep);
        drained_ = playedBuffers;
        dropConversion();
    } catch (...) {
        // The source could not be closed either; it is closed when it is opened again.
        converter_.reset();
    }
    static_cast<void>(closeDevice());
}

void PlaybackEngine::Disconnect() noexcept {
    if (device_)
        static_cast<void>(closeDevice());
    discardMessages(CloseMessage::discardAll);
    window_ = nullptr;
    converter_.reset();
    done_ = true;
}

// Closes the device at once, without events. Whether it accepted that, so that its close message
// comes.
bool PlaybackEngine::closeDevice() noexcept {
    feeding_ = false;
    playing_ = false;
    drained_ = playedBuffers;
    wave_.outReset(device_);
    for (std::size_t i = 0; i < playedBuffers; ++i)
        wave_.outUnprepareHeader(device_, &(*ring_)[i].header, headerBytes);
    // A device that refuses to close may still read the buffers: they are left to it.
    const bool closed = wave_.outClose(device_) == MMSYSERR_NOERROR;
    if (!closed)
        static_cast<void>(ring_.release());
    device_ = nullptr;
    return closed;
}

// Takes this engine's messages out of the window's queue, so that the next playback is not fed or
// stopped by what a former one left.
void PlaybackEngine::discardMessages(CloseMessage close) noexcept {
    while (discardMessage(MM_WOM_DONE))
        ;
    if (close == CloseMessage::discardOne)
        static_cast<void>(discardMessage(MM_WOM_CLOSE));
    while (close == CloseMessage::discardAll && discardMessage(MM_WOM_CLOSE))
        ;
}

bool PlaybackEngine::discardMessage(UINT message) noexcept {
    MSG found{};
    if (!window_ ||
        !windows_.peekMessage(&found, window_, message, message, PM_REMOVE | PM_QS_POSTMESSAGE))
        return false;
    // The end of the host's message loop passes every filter.
    if (found.message == WM_QUIT)
        windows_.postQuitMessage(static_cast<int>(found.wParam));
    return found.message == message;
}

} // namespace corvina
