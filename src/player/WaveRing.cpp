#include "player/WaveRing.h"

namespace corvina {
namespace {

constexpr UINT headerBytes = sizeof(WAVEHDR);
static_assert(headerBytes == 32);

} // namespace

WaveRing::WaveRing() {
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        WaveBuffer& buffer = buffers_[i];
        buffer.data.assign(bufferBytes / sizeof(std::int16_t), 0);
        buffer.dataAddress =
            static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(buffer.data.data()));
        buffer.header.lpData = reinterpret_cast<LPSTR>(buffer.data.data());
        buffer.header.dwBufferLength = static_cast<DWORD>(bufferBytes);
        buffer.header.dwUser = i;
    }
}

MMRESULT WaveRing::prepare(const WaveApi& wave, HWAVEOUT device) noexcept {
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        const MMRESULT result = wave.outPrepareHeader(device, &buffers_[i].header, headerBytes);
        if (result != MMSYSERR_NOERROR)
            return result;
    }
    return MMSYSERR_NOERROR;
}

void WaveRing::unprepare(const WaveApi& wave, HWAVEOUT device) noexcept {
    for (std::size_t i = 0; i < playedBuffers; ++i)
        wave.outUnprepareHeader(device, &buffers_[i].header, headerBytes);
}

WaveBuffer& WaveRing::next() noexcept {
    current_ = (current_ + 1) % playedBuffers;
    return buffers_[current_];
}

} // namespace corvina
