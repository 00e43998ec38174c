#pragma once

// Format and tags of a file, as lines for a person to read.

#include "PlayerClient.h"

#include <string>
#include <vector>

namespace corvina::app {

// "WAV, 16 bits, 44100 Hz, stereo, 1411 kbit/s, 0:03:05", of the file that the player opened or
// started last. milliseconds: the length of what is played of it.
[[nodiscard]] std::wstring formatLine(PlayerClient& player, long milliseconds);

// Name, format and tags of that file.
[[nodiscard]] std::vector<std::wstring> reportFile(PlayerClient& player, const std::wstring& file,
                                                   long milliseconds);

} // namespace corvina::app
