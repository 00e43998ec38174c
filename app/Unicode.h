#pragma once

// Converts text between UTF-16, for Windows and COM, and UTF-8, for the option parser and pipes.

#include <string>
#include <string_view>

namespace corvina::app {

[[nodiscard]] std::string toUtf8(std::wstring_view text);
[[nodiscard]] std::wstring fromUtf8(std::string_view text);

} // namespace corvina::app
