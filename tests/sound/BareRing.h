#pragma once

// Plays frames on the wave mapper without the library: eight buffers of 8000 bytes, each written
// again when it comes back. What the recording makes of it shows what the recording is worth.

#include "support/MessagePump.h"
#include "support/SoundSignal.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace corvina::test {

class BareRing {
public:
    explicit BareRing(const Frames& frames) : frames_(frames) {
        WAVEFORMATEX format = pcm(44100, 2, 16);
        if (::waveOutOpen(&device_, WAVE_MAPPER, &format, 0, 0, CALLBACK_NULL) != MMSYSERR_NOERROR)
            throw std::runtime_error("no wave output");
        for (Slot& slot : slots_)
            fillAndWrite(slot);
    }
    BareRing(const BareRing&) = delete;
    BareRing& operator=(const BareRing&) = delete;
    ~BareRing() {
        for (Slot& slot : slots_)
            ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
        ::waveOutClose(device_);
    }

    // Whether all was played before the deadline.
    [[nodiscard]] bool play(std::chrono::milliseconds deadline) {
        return pumpUntil([this] { return !refill(); }, deadline);
    }

private:
    struct Slot {
        WAVEHDR header{};
        std::array<Frame, 2000> data{};
        bool queued = false;
    };

    // Whether anything is still queued.
    bool refill() {
        bool busy = false;
        for (Slot& slot : slots_) {
            if (slot.queued && slot.header.dwFlags & WHDR_DONE)
                fillAndWrite(slot);
            busy = busy || slot.queued;
        }
        return busy;
    }

    void fillAndWrite(Slot& slot) {
        const std::size_t count = std::min(slot.data.size(), frames_.size() - next_);
        slot.queued = count > 0;
        if (!slot.queued)
            return;
        const auto begin = frames_.begin() + static_cast<std::ptrdiff_t>(next_);
        std::copy_n(begin, count, slot.data.begin());
        next_ += count;
        ::waveOutUnprepareHeader(device_, &slot.header, sizeof slot.header);
        slot.header = {};
        slot.header.lpData = reinterpret_cast<LPSTR>(slot.data.data());
        slot.header.dwBufferLength = static_cast<DWORD>(count * sizeof(Frame));
        ::waveOutPrepareHeader(device_, &slot.header, sizeof slot.header);
        if (::waveOutWrite(device_, &slot.header, sizeof slot.header) != MMSYSERR_NOERROR)
            throw std::runtime_error("waveOutWrite failed");
    }

    const Frames& frames_;
    std::size_t next_ = 0;
    HWAVEOUT device_ = nullptr;
    std::array<Slot, 8> slots_;
};

} // namespace corvina::test
