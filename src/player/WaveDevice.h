#pragma once

// The open wave output device of a playback. Its result codes are passed on unchanged; every call
// is safe while it is closed, and is then refused by the device layer.

#include "platform/WaveApi.h"
#include "player/PlayedFormat.h"

#include <cstdint>

namespace corvina {

class WaveDevice {
public:
    explicit WaveDevice(const WaveApi& wave) noexcept : wave_(wave) {}
    WaveDevice(const WaveDevice&) = delete;
    WaveDevice& operator=(const WaveDevice&) = delete;

    // window: gets the device's messages.
    [[nodiscard]] MMRESULT open(std::int32_t index, const WAVEFORMATEX& format,
                                HWND window) noexcept;
    // Null while closed: the system gives a closed device's handle to the next one that opens,
    // which may be another control's.
    [[nodiscard]] HWAVEOUT handle() const noexcept { return handle_; }
    // After success the handle is forgotten.
    [[nodiscard]] MMRESULT close() noexcept;
    void forget() noexcept { handle_ = nullptr; }

    [[nodiscard]] MMRESULT prepare(WAVEHDR& header) noexcept;
    [[nodiscard]] MMRESULT unprepare(WAVEHDR& header) noexcept;
    [[nodiscard]] MMRESULT write(WAVEHDR& header) noexcept;
    // The position begins at 0 again.
    MMRESULT reset() noexcept;
    MMRESULT pause() noexcept;
    MMRESULT resume() noexcept;

    // Frames played since the last reset. The last known number if the device does not say. During
    // a pause it is what the first query after its begin found: a device may go on to count what it
    // has fetched and not played.
    [[nodiscard]] std::int64_t position(const PlayedFormat& format) noexcept;
    // Whether the last query succeeded.
    [[nodiscard]] bool responds() const noexcept { return responds_; }

private:
    enum class Motion { running, pausing, paused };

    const WaveApi& wave_;
    HWAVEOUT handle_ = nullptr;
    Motion motion_ = Motion::running;
    std::int64_t position_ = 0;
    bool responds_ = true;
};

} // namespace corvina
