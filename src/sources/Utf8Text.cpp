#include "sources/Utf8Text.h"

#include <windows.h>

namespace corvina {

std::wstring fromUtf8(std::string_view text) {
    const auto length = static_cast<int>(text.size());
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), size);
    return result;
}

} // namespace corvina
