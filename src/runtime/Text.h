#pragma once

// Small operations on texts. Comparing without regard to case folds the letters of ASCII and of the
// current locale's simple mapping; lengths never change.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvina {

[[nodiscard]] std::wstring lowerCase(std::wstring_view text);
[[nodiscard]] std::wstring upperCase(std::wstring_view text);

// Whether part occurs anywhere in text, without regard to case; an empty part always does.
[[nodiscard]] bool containsIgnoringCase(std::wstring_view text, std::wstring_view part);

[[nodiscard]] std::wstring join(const std::vector<std::wstring>& parts,
                                std::wstring_view separator);
[[nodiscard]] std::vector<std::wstring> split(std::wstring_view text, wchar_t separator);

// The text before its first character of code 0.
[[nodiscard]] std::wstring_view upToNul(std::wstring_view text) noexcept;

// The text without blanks at both ends.
[[nodiscard]] std::wstring_view trim(std::wstring_view text) noexcept;

} // namespace corvina
