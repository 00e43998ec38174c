#pragma once

// What the player window remembers from one run to the next, in the registry of the user.

#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

struct Settings {
    std::wstring device; // name of the output device; empty for the system's choice
    DWORD graphStyle = 1;
    DWORD barColor = RGB(86, 196, 120);
    DWORD curveColor = RGB(102, 178, 255);
    DWORD backgroundColor = RGB(18, 20, 26);
    bool shuffle = false;
    bool repeat = false;
    std::vector<std::wstring> recentFiles; // the latest first
    RECT place{}; // of the window on the screen; empty if none is known yet

    [[nodiscard]] static Settings load();
    void save() const;
    // Puts a file to the front of the recent ones, of which the latest ten are kept.
    void addRecent(const std::wstring& file);
};

} // namespace corvina::app
