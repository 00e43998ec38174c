#pragma once

// Conversion between UTF-16 texts and the system's ANSI code page.

#include <string>
#include <string_view>

namespace corvina {

struct AnsiText {
    std::string text;
    // Some character has no equal in the code page, or the text holds a character of code 0, so
    // that the converted text means something else (a question mark is a wildcard in a file name).
    bool lossy = false;
};

[[nodiscard]] AnsiText toAnsi(std::wstring_view text);
[[nodiscard]] std::wstring fromAnsi(std::string_view text);

// One character for each byte, also where the code page joins two bytes to one character.
[[nodiscard]] std::wstring fromAnsiBytes(std::string_view bytes);

} // namespace corvina
