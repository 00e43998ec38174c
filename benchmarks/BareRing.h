#pragma once

// The least that plays a WAV file of CD quality: eight buffers of 8000 bytes, refilled with
// ReadFile from window messages. What the player is measured against.

#include "support/HiddenWindow.h"

#include <array>
#include <chrono>
#include <string>
#include <windows.h>

#include <mmsystem.h>

namespace corvina::bench {

using Moment = std::chrono::steady_clock::time_point;

class BareRing {
public:
    BareRing();
    BareRing(const BareRing&) = delete;
    BareRing& operator=(const BareRing&) = delete;
    ~BareRing();

    // Opens the file and the device and queues all eight buffers.
    void start(const std::wstring& path);
    // Closes the device and the file.
    void stop();
    // All has been played.
    [[nodiscard]] bool done() const noexcept { return queued_ == 0; }
    // When the first buffer of this start was handed to the device.
    [[nodiscard]] Moment firstWrite() const noexcept { return firstWrite_; }

private:
    struct Slot {
        WAVEHDR header;
        std::array<char, 8000> data;
    };

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void refill(WAVEHDR& header);

    test::HiddenWindow window_;
    HANDLE file_ = INVALID_HANDLE_VALUE;
    HWAVEOUT device_ = nullptr;
    std::array<Slot, 8> slots_{};
    int queued_ = 0;
    Moment firstWrite_;
};

} // namespace corvina::bench
