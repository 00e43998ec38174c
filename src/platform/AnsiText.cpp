#include "platform/AnsiText.h"

#include "runtime/RuntimeError.h"

#include <array>
#include <limits>
#include <windows.h>

namespace corvina {
namespace {

int lengthForWindows(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throwOverflow();
    return static_cast<int>(length);
}

} // namespace

AnsiText toAnsi(std::wstring_view text) {
    AnsiText result;
    if (text.empty())
        return result;
    const int length = lengthForWindows(text.size());
    BOOL replaced = FALSE;
    const int size = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), length,
                                           nullptr, 0, nullptr, nullptr);
    result.text.resize(static_cast<std::size_t>(size));
    ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), length, result.text.data(),
                          size, nullptr, &replaced);
    result.lossy = replaced != FALSE || text.find(L'\0') != std::wstring_view::npos;
    return result;
}

std::wstring fromAnsi(std::string_view text) {
    std::wstring result;
    if (text.empty())
        return result;
    const int length = lengthForWindows(text.size());
    const int size = ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    result.resize(static_cast<std::size_t>(size));
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, result.data(), size);
    return result;
}

std::wstring fromAnsiBytes(std::string_view bytes) {
    // A tag may hold a million texts: the system is asked once.
    static const auto characters = [] {
        std::array<wchar_t, 256> table{};
        for (std::size_t code = 0; code < table.size(); ++code) {
            const char byte = static_cast<char>(code);
            ::MultiByteToWideChar(CP_ACP, 0, &byte, 1, &table[code], 1);
        }
        return table;
    }();
    std::wstring result;
    result.reserve(bytes.size());
    for (const char byte : bytes)
        result += characters[static_cast<unsigned char>(byte)];
    return result;
}

} // namespace corvina
