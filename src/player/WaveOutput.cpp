#include "player/WaveOutput.h"

#include "stream/PcmFormat.h"

#include <algorithm>

namespace corvina {
namespace {

// What a change of the sound leaves alone behind the device's position: a driver may have fetched
// so much already.
constexpr std::int64_t fetchedMs = 20;
constexpr std::int64_t levelMs = 20;
// A device that has blocks and plays none of them for so long is lost.
constexpr std::uint64_t lostAfterMs = 850;

WAVEFORMATEX agreeingRecord(const PlayedFormat& format) {
    return pcmFormat(static_cast<DWORD>(format.sampleRate), static_cast<WORD>(format.channels),
                     static_cast<WORD>(format.bits));
}

// Block align and average rate stay the source's even if the converter changes the width. This
// mixed record is on purpose: it is what devices have always been opened with here. They go by the
// width and accept it.
WAVEFORMATEX mixedRecord(const PlayedFormat& format, const WAVEFORMATEX& source) {
    WAVEFORMATEX mixed = source;
    mixed.nSamplesPerSec = static_cast<DWORD>(format.sampleRate);
    mixed.nChannels = static_cast<WORD>(format.channels);
    mixed.wBitsPerSample = static_cast<WORD>(format.bits);
    return mixed;
}

} // namespace

MMRESULT WaveOutput::open(std::int32_t index, PlayedTrack& track, const WAVEFORMATEX& source,
                          const SoundSettings& settings, HWND window) {
    format_ = track.format();
    // Whatever needs memory comes before the device is opened.
    ring_ = std::make_unique<WaveRing>(format_, settings);
    // Without a window that listens nothing would ever fill the ring, so the device is not opened.
    if (!window)
        return MMSYSERR_INVALPARAM;
    MMRESULT result = device_.open(index, mixedRecord(format_, source), window);
    // A device that goes by the other fields too gets a record whose fields agree, and one without
    // so many speakers gets two channels.
    if (result == WAVERR_BADFORMAT)
        result = device_.open(index, agreeingRecord(format_), window);
    if (result == WAVERR_BADFORMAT && track.mixToStereo()) {
        format_ = track.format();
        ring_ = std::make_unique<WaveRing>(format_, settings);
        result = device_.open(index, agreeingRecord(format_), window);
    }
    return result;
}

MMRESULT WaveOutput::prepare() noexcept {
    watchedFrame_ = 0;
    noteProgress();
    return ring_->prepare(wave_, device_.handle());
}

bool WaveOutput::closeAtOnce() noexcept {
    device_.reset();
    ring_->unprepare(wave_, device_.handle());
    const bool closed = device_.close() == MMSYSERR_NOERROR;
    // A device that refuses to close may still read the buffers: they are left to it.
    if (!closed)
        static_cast<void>(ring_.release());
    device_.forget();
    return closed;
}

void WaveOutput::restart(bool paused) noexcept {
    ring_->restart();
    watchedFrame_ = 0;
    device_.reset();
    if (paused) {
        device_.pause();
        static_cast<void>(device_.position(format_)); // before it can count what comes next
    }
}

std::int64_t WaveOutput::heardFrame() noexcept {
    const std::int64_t frame = device_.position(format_);
    return ring_ ? std::min(frame, ring_->filledFrames()) : frame;
}

double WaveOutput::level(std::int32_t channel) noexcept {
    if (!ring_ || format_.channels == 0)
        return 0;
    return ring_->peak(std::min(channel, format_.channels - 1), heardFrame(),
                       format_.framesOf(levelMs));
}

void WaveOutput::setSettings(const SoundSettings& settings) {
    if (ring_)
        ring_->setSettings(settings, heardFrame() + format_.framesOf(fetchedMs));
}

bool WaveOutput::stalled(bool paused, bool messagesDue) noexcept {
    const std::int64_t frame = heardFrame();
    const std::uint64_t now = ::GetTickCount64();
    const bool waits = ring_->anyQueued() ? !(paused && device_.responds()) : messagesDue;
    if (!waits || frame != watchedFrame_) {
        watchedFrame_ = frame;
        progressAt_ = now;
        return false;
    }
    return now - progressAt_ >= lostAfterMs;
}

} // namespace corvina
