#include "player/WaveRing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace corvina {
namespace {

constexpr UINT headerBytes = sizeof(WAVEHDR);
static_assert(headerBytes == 32);

// Runs the chain over a block, with its changes on the way.
void render(SampleChain& chain, std::span<std::uint8_t> block,
            const std::vector<std::pair<std::size_t, SoundSettings>>& changes) noexcept {
    std::size_t done = 0;
    for (const auto& [at, settings] : changes) {
        chain.process(block.subspan(done, at - done));
        chain.setTarget(settings);
        done = at;
    }
    chain.process(block.subspan(done));
}

std::int64_t framesInBuffer(const PlayedFormat& format) noexcept {
    return WaveRing::bufferBytes / std::max(format.frameBytes(), 1);
}

} // namespace

WaveRing::WaveRing(const PlayedFormat& format, const SoundSettings& settings)
    : format_(format), chain_(format, settings) {
    // Silence is 0x80 in samples of 8 bits.
    const std::int16_t silent = format.bits == 8 ? static_cast<std::int16_t>(0x8080) : 0;
    const auto frames = static_cast<std::int32_t>(framesInBuffer(format));
    const std::int32_t played =
        frames > 0 ? frames * std::max(format.frameBytes(), 1) : bufferBytes;
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        WaveBuffer& buffer = buffers_[i];
        buffer.data.assign(bufferBytes / sizeof(std::int16_t), silent);
        buffer.dataAddress =
            static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(buffer.data.data()));
        buffer.header.lpData = reinterpret_cast<LPSTR>(buffer.data.data());
        buffer.header.dwBufferLength = static_cast<DWORD>(played);
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

void WaveRing::applySettings(WaveBuffer& buffer) {
    buffer.firstFrame = filledFrames_;
    filledFrames_ += framesInBuffer(format_);
    buffer.changes.clear();
    buffer.chain.reset();
    if (chain_.neutral())
        return;
    buffer.unchanged = buffer.data;
    buffer.chain = chain_;
    chain_.process(buffer.bytes());
}

void WaveRing::setSettings(const SoundSettings& settings, std::int64_t fromFrame) {
    const std::int64_t frames = framesInBuffer(format_);
    // From the buffer that holds the frame to the one that was filled last, in their order.
    const WaveBuffer* before = nullptr;
    for (std::size_t i = 1; i <= playedBuffers; ++i) {
        WaveBuffer& buffer = buffers_[(current_ + i) % playedBuffers];
        const bool queued = (buffer.header.dwFlags & WHDR_INQUEUE) != 0;
        if (!queued || buffer.firstFrame + frames <= fromFrame)
            continue;
        std::size_t fromByte = 0;
        if (!before) {
            if (!buffer.chain) {
                // Neutral settings left it alone: the chain was as it is at the beginning.
                buffer.chain.emplace(format_, SoundSettings{});
                buffer.unchanged = buffer.data;
            }
            fromByte = static_cast<std::size_t>(
                std::max<std::int64_t>(fromFrame - buffer.firstFrame, 0) * format_.frameBytes());
            std::erase_if(buffer.changes,
                          [&](const auto& change) { return change.first >= fromByte; });
            buffer.changes.emplace_back(fromByte, settings);
        } else {
            if (!buffer.chain)
                buffer.unchanged = buffer.data;
            buffer.chain = chain_;
            buffer.changes.clear();
        }
        renderAgain(buffer, fromByte);
        before = &buffer;
    }
    chain_.setTarget(settings);
}

// Leaves what is before that byte alone, which the device may be reading. Behind it the chain is
// where the next buffer begins.
void WaveRing::renderAgain(WaveBuffer& buffer, std::size_t fromByte) {
    std::vector<std::int16_t> samples = buffer.unchanged;
    chain_ = *buffer.chain;
    auto* const bytes = reinterpret_cast<std::uint8_t*>(samples.data());
    render(chain_, {bytes, buffer.bytes().size()}, buffer.changes);
    std::memcpy(buffer.bytes().data() + fromByte, bytes + fromByte,
                buffer.bytes().size() - fromByte);
}

bool WaveRing::anyQueued() const noexcept {
    return std::any_of(buffers_.begin(), buffers_.end(), [](const WaveBuffer& buffer) {
        return (buffer.header.dwFlags & WHDR_INQUEUE) != 0;
    });
}

double WaveRing::peak(std::int32_t channel, std::int64_t fromFrame,
                      std::int64_t frames) const noexcept {
    const std::int64_t inBuffer = framesInBuffer(format_);
    int largest = 0;
    for (std::size_t i = 0; i < playedBuffers; ++i) {
        const WaveBuffer& buffer = buffers_[i];
        if ((buffer.header.dwFlags & WHDR_INQUEUE) == 0)
            continue;
        const std::int64_t begin = std::max(fromFrame, buffer.firstFrame);
        const std::int64_t end = std::min(fromFrame + frames, buffer.firstFrame + inBuffer);
        for (std::int64_t frame = begin; frame < end; ++frame) {
            const auto sample =
                static_cast<std::size_t>((frame - buffer.firstFrame) * format_.channels + channel);
            const int value =
                format_.bits == 8
                    ? (reinterpret_cast<const std::uint8_t*>(buffer.data.data())[sample] - 0x80) *
                          256
                    : buffer.data[sample];
            largest = std::max(largest, std::abs(value));
        }
    }
    return largest / 32768.0;
}

} // namespace corvina
