#pragma once

#include <string>
#include <windows.h>

namespace corvina::app {

// Saves what the screen shows of a window as a PNG file.
[[nodiscard]] bool saveWindowPicture(HWND window, const std::wstring& file);

} // namespace corvina::app
