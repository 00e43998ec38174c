#pragma once

// Asks the user for files and colours.

#include <optional>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

// The chosen files, none when the user gave up. audioPatterns: of the files that can be played.
[[nodiscard]] std::vector<std::wstring> chooseFiles(HWND owner, const std::wstring& audioPatterns);
// What its dialog offers: pairs of a name and its patterns, each with a zero behind it.
[[nodiscard]] std::wstring kindsOfFiles(const std::wstring& audioPatterns);

// A folder, empty when the user gave up.
[[nodiscard]] std::wstring chooseFolder(HWND owner);

[[nodiscard]] std::optional<COLORREF> chooseColor(HWND owner, COLORREF present);

// The files of a drop that a WM_DROPFILES announces; ends the drop.
[[nodiscard]] std::vector<std::wstring> takeDroppedFiles(HANDLE drop);

} // namespace corvina::app
