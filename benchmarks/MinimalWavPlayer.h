#pragma once

// The smallest program that plays a WAV file of CD quality: eight buffers of 8000 bytes, refilled
// with ReadFile when the device's window messages return them. The player is measured against it.
// It may open a codec for the file too, which copies PCM to PCM and of which it makes no use.

#include "platform/UniqueHandle.h"
#include "support/HiddenWindow.h"

#include <array>
#include <chrono>
#include <string>
#include <windows.h>

#include <mmreg.h>
#include <mmsystem.h>
#include <msacm.h>

namespace corvina::bench {

using Moment = std::chrono::steady_clock::time_point;

class MinimalWavPlayer {
public:
    MinimalWavPlayer();
    MinimalWavPlayer(const MinimalWavPlayer&) = delete;
    MinimalWavPlayer& operator=(const MinimalWavPlayer&) = delete;
    ~MinimalWavPlayer();

    enum class Codec { none, opened };

    // Opens the file and the device and queues all eight buffers.
    void start(const std::wstring& path, Codec codec = Codec::none);
    // Drops what is queued and goes on at that byte of the sound.
    void jump(LONG byte);
    // Closes the device and the file.
    void stop();
    // True when everything has been played.
    [[nodiscard]] bool done() const noexcept { return queued_ == 0; }
    // When the first buffer of this start or jump was handed to the device.
    [[nodiscard]] Moment firstWrite() const noexcept { return firstWrite_; }

private:
    struct Slot {
        WAVEHDR header;
        std::array<char, 8000> data;
    };

    struct FileTraits {
        using Handle = HANDLE;
        static constexpr Handle none = nullptr;
        static void close(Handle file) noexcept { ::CloseHandle(file); }
    };
    using File = UniqueHandle<FileTraits>;
    struct CodecTraits {
        using Handle = HACMSTREAM;
        static constexpr Handle none = nullptr;
        static void close(Handle codec) noexcept { ::acmStreamClose(codec, 0); }
    };

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void refill(WAVEHDR& header);

    test::HiddenWindow window_;
    File file_;
    UniqueHandle<CodecTraits> codec_;
    HWAVEOUT device_ = nullptr;
    std::array<Slot, 8> slots_{};
    int queued_ = 0;
    Moment firstWrite_;
};

} // namespace corvina::bench
