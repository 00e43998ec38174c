#pragma once

// Format and tags of a file, as lines for a person to read.

#include "PlayerClient.h"

#include <string>
#include <vector>

namespace corvina::app {

// Of the file that the player opened or started last.
[[nodiscard]] std::vector<std::wstring> reportFile(PlayerClient& player, const std::wstring& file);

} // namespace corvina::app
