#pragma once

// A wave output that takes every block at once and keeps what is written: whatever this process
// plays, through whichever device, in a blink and without a sound card. The entries of winmm.dll
// lead here as long as the object lives. One object at a time, on the thread that plays.

#include <array>
#include <cstdint>
#include <vector>
#include <windows.h>

#include <mmsystem.h>

namespace corvina::test {

class InstantDevice {
public:
    InstantDevice();
    InstantDevice(const InstantDevice&) = delete;
    InstantDevice& operator=(const InstantDevice&) = delete;
    ~InstantDevice();

    // Of the last open; all zeros before.
    [[nodiscard]] const WAVEFORMATEX& format() const noexcept { return format_; }
    // Everything that was written, as 16-bit samples.
    [[nodiscard]] std::vector<std::int16_t> samples() const;

private:
    static InstantDevice* current_;

    static MMRESULT WINAPI open(HWAVEOUT* device, UINT id, const WAVEFORMATEX* format,
                                DWORD_PTR callback, DWORD_PTR instance, DWORD flags);
    static MMRESULT WINAPI prepare(HWAVEOUT device, WAVEHDR* header, UINT size);
    static MMRESULT WINAPI unprepare(HWAVEOUT device, WAVEHDR* header, UINT size);
    static MMRESULT WINAPI write(HWAVEOUT device, WAVEHDR* header, UINT size);
    static MMRESULT WINAPI control(HWAVEOUT device); // reset, pause and restart
    static MMRESULT WINAPI close(HWAVEOUT device);

    // The first bytes of a function, which lead elsewhere meanwhile.
    struct Detour {
        std::uint8_t* code = nullptr;
        std::array<std::uint8_t, 5> original{};
    };
    void redirect(const char* name, const void* target);

    std::vector<Detour> detours_;
    WAVEFORMATEX format_{};
    HWND window_ = nullptr;
    bool isOpen_ = false;
    std::vector<std::uint8_t> bytes_;
};

} // namespace corvina::test
