#pragma once

// What the player window remembers from one run to the next, in the registry of the user.

#include <array>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

struct Settings {
    std::wstring device; // name of the output device; empty for the system's choice
    DWORD volume = 100;
    bool mute = false;
    long balance = 0;
    std::array<long, 10> equalizer{}; // tenths of a decibel
    bool equalizerShown = false;
    DWORD graphStyle = 1;
    bool decibels = true;
    bool octaves = true;
    bool peaks = true;
    bool channels = true;
    DWORD barColor = RGB(86, 196, 120);
    DWORD curveColor = RGB(102, 178, 255);
    DWORD backgroundColor = RGB(18, 20, 26);
    bool shuffle = false;
    bool repeat = false;
    bool loop = false;
    std::vector<std::wstring> recentFiles; // the latest first
    RECT place{}; // of the window on the screen; empty if none is known yet

    static constexpr const wchar_t* usualKey = L"Software\\Corvina\\Player";

    // Values that are missing, of another type or out of range are as in a first run.
    [[nodiscard]] static Settings load(const wchar_t* key = usualKey);
    void save(const wchar_t* key = usualKey) const;
    // Puts a file to the front of the recent ones, of which the latest ten are kept.
    void addRecent(const std::wstring& file);
};

} // namespace corvina::app
