#pragma once

// Text between UTF-16, which Windows and COM speak, and UTF-8, which CLI11 and pipes speak.

#include <string>
#include <string_view>

namespace corvina::app {

[[nodiscard]] std::string toUtf8(std::wstring_view text);
[[nodiscard]] std::wstring fromUtf8(std::string_view text);

} // namespace corvina::app
