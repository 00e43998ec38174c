#pragma once

// Small text files, such as lists of music, and the names of files.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvina::app {

[[nodiscard]] std::wstring lowerCase(std::wstring_view text);
// What stands behind the last dot of a file's name, in lower case; empty without one.
[[nodiscard]] std::wstring extensionOf(std::wstring_view path);

// Without blanks at both ends.
[[nodiscard]] std::wstring_view trimmed(std::wstring_view text) noexcept;
// The lines that are not blank, trimmed.
[[nodiscard]] std::vector<std::wstring> linesOf(std::wstring_view text);
// UTF-8, UTF-16 with its mark, or the system's code page.
[[nodiscard]] std::wstring decode(std::string_view bytes);

// None for a file that cannot be read or that is far too large for a list.
[[nodiscard]] std::optional<std::string> contentsOf(const std::wstring& path);

} // namespace corvina::app
