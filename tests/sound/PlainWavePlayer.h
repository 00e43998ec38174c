#pragma once

// Plays frames on the wave mapper without the library: eight buffers of 8000 bytes, each written
// again when it comes back. It shows how exact the recording is, and what this machine can do.

#include "support/MessagePump.h"
#include "support/SoundSignal.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace corvina::test {

class PlainWavePlayer {
public:
    // Wine hands the last buffer back while the sound server still holds some milliseconds of it,
    // which closing the device would cut off: a block of silence is played behind the frames.
    explicit PlainWavePlayer(Frames frames) : frames_(std::move(frames)) {
        frames_.resize((frames_.size() / blockFrames + 2) * blockFrames);
        WAVEFORMATEX format = pcm(44100, 2, 16);
        if (::waveOutOpen(&device_, WAVE_MAPPER, &format, 0, 0, CALLBACK_NULL) != MMSYSERR_NOERROR)
            throw std::runtime_error("no wave output");
        for (Slot& slot : slots_)
            fillAndWrite(slot);
    }
    PlainWavePlayer(const PlainWavePlayer&) = delete;
    PlainWavePlayer& operator=(const PlainWavePlayer&) = delete;
    ~PlainWavePlayer() {
        for (Slot& slot : slots_)
            ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
        ::waveOutClose(device_);
    }

    // Whether all was played before the deadline.
    [[nodiscard]] bool play(std::chrono::milliseconds deadline) {
        return pumpUntil([this] { return !refill(); }, deadline);
    }

    // Fills and writes every buffer that has come back; whether anything is still under way.
    [[nodiscard]] bool refill() {
        bool busy = false;
        for (Slot& slot : slots_) {
            if (slot.queued && slot.header.dwFlags & WHDR_DONE)
                fillAndWrite(slot);
            busy = busy || slot.queued;
        }
        return busy;
    }

private:
    static constexpr std::size_t blockFrames = 2000;

    struct Slot {
        WAVEHDR header{};
        std::array<Frame, blockFrames> data{};
        bool queued = false;
    };

    void fillAndWrite(Slot& slot) {
        slot.queued = next_ < frames_.size();
        if (!slot.queued)
            return;
        std::copy_n(frames_.begin() + static_cast<std::ptrdiff_t>(next_), blockFrames,
                    slot.data.begin());
        next_ += blockFrames;
        ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
        slot.header = {};
        slot.header.lpData = reinterpret_cast<LPSTR>(slot.data.data());
        slot.header.dwBufferLength = sizeof slot.data;
        ::waveOutPrepareHeader(device_, &slot.header, sizeof slot.header);
        if (::waveOutWrite(device_, &slot.header, sizeof slot.header) != MMSYSERR_NOERROR)
            throw std::runtime_error("waveOutWrite failed");
    }

    Frames frames_;
    std::size_t next_ = 0;
    HWAVEOUT device_ = nullptr;
    std::array<Slot, 8> slots_;
};

} // namespace corvina::test
