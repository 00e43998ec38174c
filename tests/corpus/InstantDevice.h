#pragma once

// A wave output that takes every block at once and keeps what is written: whatever this process
// plays, through whichever device, in a blink and without a sound card. The entries of winmm.dll
// lead here as long as the object lives. One object at a time, on the thread that plays. Its
// position is what was written.

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

    // From now on blocks are kept, as by a device that plays them slowly, until they are released.
    void hold() noexcept { holds_ = true; }
    void release();

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
    static MMRESULT WINAPI reset(HWAVEOUT device);
    static MMRESULT WINAPI control(HWAVEOUT device); // pause and restart
    static MMRESULT WINAPI position(HWAVEOUT device, MMTIME* time, UINT size);
    static MMRESULT WINAPI close(HWAVEOUT device);

    // The first bytes of a function, which lead elsewhere meanwhile.
    struct Detour {
        std::uint8_t* code = nullptr;
        std::array<std::uint8_t, 5> original{};
    };
    void redirect(const char* name, const void* target);
    void giveBack(WAVEHDR* header) const;

    std::vector<Detour> detours_;
    WAVEFORMATEX format_{};
    HWND window_ = nullptr;
    bool isOpen_ = false;
    std::vector<std::uint8_t> bytes_;
    std::size_t bytesSinceReset_ = 0;
    bool holds_ = false;
    std::vector<WAVEHDR*> held_;
};

} // namespace corvina::test
