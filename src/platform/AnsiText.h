#pragma once

// Conversion between UTF-16 texts and the system's ANSI code page.

#include "platform/CodePage.h"

#include <string>
#include <string_view>

namespace corvina {

[[nodiscard]] AnsiText toAnsi(std::wstring_view text);
[[nodiscard]] std::wstring fromAnsi(std::string_view text);
[[nodiscard]] std::wstring fromAnsiBytes(std::string_view bytes);

} // namespace corvina
