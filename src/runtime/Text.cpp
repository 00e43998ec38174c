#include "runtime/Text.h"

#include <algorithm>
#include <cwctype>

namespace corvina {

std::wstring lowerCase(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return result;
}

std::wstring upperCase(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); });
    return result;
}

bool containsIgnoringCase(std::wstring_view text, std::wstring_view part) {
    return lowerCase(text).find(lowerCase(part)) != std::wstring::npos;
}

std::wstring join(const std::vector<std::wstring>& parts, std::wstring_view separator) {
    std::wstring result;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            result += separator;
        result += parts[i];
    }
    return result;
}

std::vector<std::wstring> split(std::wstring_view text, wchar_t separator) {
    std::vector<std::wstring> parts;
    if (text.empty())
        return parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::wstring_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

std::wstring_view upToNul(std::wstring_view text) noexcept {
    return text.substr(0, text.find(L'\0'));
}

std::wstring_view trim(std::wstring_view text) noexcept {
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

} // namespace corvina
