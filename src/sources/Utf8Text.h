#pragma once

// Texts in UTF-8, as tags hold them.

#include <string>
#include <string_view>

namespace corvina {

// What is not UTF-8 becomes the replacement character.
[[nodiscard]] std::wstring fromUtf8(std::string_view text);

} // namespace corvina
