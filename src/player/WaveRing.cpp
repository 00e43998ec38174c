#include "player/WaveRing.h"

#include <algorithm>

namespace corvina {
namespace {

constexpr UINT headerBytes = sizeof(WAVEHDR);
static_assert(headerBytes == 32);

} // namespace

WaveRing::WaveRing(std::int32_t sampleBits, std::int32_t channels) {
    const std::int32_t blockBytes = std::max(1, sampleBits / 8 * channels);
    playedBytes_ = bufferBytes > blockBytes ? bufferBytes / blockBytes * blockBytes : bufferBytes;
    // Silence is 0x80 in samples of 8 bits.
    const std::int16_t silent = sampleBits == 8 ? static_cast<std::int16_t>(0x8080) : 0;
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        WaveBuffer& buffer = buffers_[i];
        buffer.data.assign(bufferBytes / sizeof(std::int16_t), silent);
        buffer.dataAddress =
            static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(buffer.data.data()));
        buffer.header.lpData = reinterpret_cast<LPSTR>(buffer.data.data());
        buffer.header.dwBufferLength = static_cast<DWORD>(playedBytes_);
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
