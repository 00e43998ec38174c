#include "player/WaveDevice.h"

#include <algorithm>

namespace corvina {
namespace {

constexpr UINT headerBytes = sizeof(WAVEHDR);

} // namespace

MMRESULT WaveDevice::open(std::int32_t index, const WAVEFORMATEX& format, HWND window) noexcept {
    const DWORD mapping = index == -1 ? 0 : WAVE_MAPPED;
    HWAVEOUT opened = nullptr;
    const MMRESULT result =
        wave_.outOpen(&opened, static_cast<UINT>(index), &format,
                      reinterpret_cast<DWORD_PTR>(window), 0, CALLBACK_WINDOW | mapping);
    if (result == MMSYSERR_NOERROR)
        handle_ = opened;
    motion_ = Motion::running;
    position_ = 0;
    responds_ = true;
    return result;
}

MMRESULT WaveDevice::close() noexcept {
    const MMRESULT result = wave_.outClose(handle_);
    if (result == MMSYSERR_NOERROR)
        handle_ = nullptr;
    return result;
}

MMRESULT WaveDevice::prepare(WAVEHDR& header) noexcept {
    return wave_.outPrepareHeader(handle_, &header, headerBytes);
}

MMRESULT WaveDevice::unprepare(WAVEHDR& header) noexcept {
    return wave_.outUnprepareHeader(handle_, &header, headerBytes);
}

MMRESULT WaveDevice::write(WAVEHDR& header) noexcept {
    return wave_.outWrite(handle_, &header, headerBytes);
}

MMRESULT WaveDevice::reset() noexcept {
    motion_ = Motion::running;
    position_ = 0;
    return wave_.outReset(handle_);
}

MMRESULT WaveDevice::pause() noexcept {
    const MMRESULT result = wave_.outPause(handle_);
    if (result == MMSYSERR_NOERROR && motion_ == Motion::running)
        motion_ = Motion::pausing;
    return result;
}

MMRESULT WaveDevice::resume() noexcept {
    const MMRESULT result = wave_.outRestart(handle_);
    if (result == MMSYSERR_NOERROR)
        motion_ = Motion::running;
    return result;
}

std::int64_t WaveDevice::position(const PlayedFormat& format) noexcept {
    MMTIME time{};
    time.wType = TIME_SAMPLES;
    responds_ = wave_.outGetPosition(handle_, &time, sizeof time) == MMSYSERR_NOERROR;
    if (!responds_ || motion_ == Motion::paused)
        return position_;
    if (motion_ == Motion::pausing)
        motion_ = Motion::paused;
    // A device may count in bytes instead. Either number has 32 bits and begins again after 27
    // hours of CD sound or earlier, so only the way since the last query is taken from it.
    const auto unit =
        static_cast<std::int64_t>(time.wType == TIME_BYTES ? std::max(format.frameBytes(), 1) : 1);
    const DWORD counted = time.wType == TIME_BYTES ? time.u.cb : time.u.sample;
    if (time.wType != TIME_BYTES && time.wType != TIME_SAMPLES)
        return position_;
    const auto way = static_cast<std::int32_t>(counted - static_cast<DWORD>(position_ * unit));
    position_ += std::max(way, 0) / unit;
    return position_;
}

} // namespace corvina
