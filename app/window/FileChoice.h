#pragma once

// Asks the user for files and colours.

#include <optional>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

// The chosen files, none when the user gave up.
[[nodiscard]] std::vector<std::wstring> chooseFiles(HWND owner);

// A folder, empty when the user gave up.
[[nodiscard]] std::wstring chooseFolder(HWND owner);

[[nodiscard]] std::optional<COLORREF> chooseColor(HWND owner, COLORREF present);

// The files of a drop that a WM_DROPFILES announces; ends the drop.
[[nodiscard]] std::vector<std::wstring> takeDroppedFiles(HANDLE drop);

} // namespace corvina::app
