#pragma once

// The names by which Wine's users call files. A Windows program under Wine sees the root folder of
// Unix as drive Z:, and its current folder is the user's own, so that relative names need no
// translation.

#include <string>

namespace corvina::app {

[[nodiscard]] bool runsUnderWine();

// "/music/tune.wav" becomes "Z:\music\tune.wav"; every other name stays as it is.
[[nodiscard]] std::wstring windowsPath(std::wstring path);

} // namespace corvina::app
