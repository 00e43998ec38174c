#include "platform/CodePage.h"

#include "runtime/RuntimeError.h"

#include <limits>

namespace corvina {
namespace {

int lengthForWindows(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throwOverflow();
    return static_cast<int>(length);
}

} // namespace

CodePage::CodePage(unsigned number, const TextApi& texts) noexcept
    : number_(number), texts_(texts) {
    for (std::size_t code = 0; code < characters_.size(); ++code) {
        const char byte = static_cast<char>(code);
        ::MultiByteToWideChar(number_, 0, &byte, 1, &characters_[code], 1);
    }
}

bool CodePage::isUtf8() const noexcept {
    return number_ == CP_UTF8;
}

AnsiText CodePage::encode(std::wstring_view text) const {
    AnsiText result;
    if (text.empty())
        return result;
    const int length = lengthForWindows(text.size());
    // UTF-8 has every character except halves of surrogate pairs. For UTF-8 Windows accepts neither
    // the flag against similar characters nor the report of replaced ones.
    const DWORD flags = isUtf8() ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    const int size = texts_.wideCharToMultiByte(number_, flags, text.data(), length, nullptr, 0,
                                                nullptr, nullptr);
    result.text.resize(static_cast<std::size_t>(size));
    texts_.wideCharToMultiByte(number_, flags, text.data(), length, result.text.data(), size,
                               nullptr, isUtf8() ? nullptr : &replaced);
    result.lossy = size == 0 || replaced != FALSE || text.find(L'\0') != std::wstring_view::npos;
    return result;
}

std::wstring CodePage::decode(std::string_view text) const {
    std::wstring result;
    if (text.empty())
        return result;
    const int length = lengthForWindows(text.size());
    const int size = ::MultiByteToWideChar(number_, 0, text.data(), length, nullptr, 0);
    result.resize(static_cast<std::size_t>(size));
    ::MultiByteToWideChar(number_, 0, text.data(), length, result.data(), size);
    return result;
}

std::wstring CodePage::decodeBytes(std::string_view bytes) const {
    if (isUtf8())
        return decode(bytes);
    std::wstring result;
    result.reserve(bytes.size());
    for (const char byte : bytes)
        result += characters_[static_cast<unsigned char>(byte)];
    return result;
}

} // namespace corvina
