#include "TextFiles.h"

#include "Owners.h"

#include <algorithm>
#include <cwctype>

namespace corvina::app {

namespace {

constexpr DWORD largestFile = 16 * 1024 * 1024; // bytes

std::wstring decodeWith(UINT codePage, DWORD flags, std::string_view bytes) {
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(std::max(size, 0)), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.data(), length, text.data(), size);
    return text;
}

struct FileCloser {
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};

} // namespace

std::wstring lowerCase(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), [](wchar_t letter) {
        return static_cast<wchar_t>(std::towlower(letter));
    });
    return result;
}

std::wstring extensionOf(std::wstring_view path) {
    const std::size_t dot = path.find_last_of(L'.');
    const std::size_t slash = path.find_last_of(L"\\/");
    if (dot == std::wstring_view::npos || (slash != std::wstring_view::npos && dot < slash))
        return {};
    return lowerCase(path.substr(dot + 1));
}

std::wstring decode(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        std::wstring text;
        for (std::size_t at = 2; at + 1 < bytes.size(); at += 2)
            text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[at]) |
                                         static_cast<unsigned char>(bytes[at + 1]) << 8);
        return text;
    }
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    const std::wstring text = decodeWith(CP_UTF8, MB_ERR_INVALID_CHARS, bytes);
    return text.empty() ? decodeWith(CP_ACP, 0, bytes) : text;
}

std::wstring_view trimmed(std::wstring_view text) noexcept {
    constexpr std::wstring_view blanks = L" \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::wstring_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::wstring> linesOf(std::wstring_view text) {
    std::vector<std::wstring> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(L"\r\n"), text.size());
        if (const std::wstring_view line = trimmed(text.substr(0, end)); !line.empty())
            lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::optional<std::string> contentsOf(const std::wstring& path) {
    const HANDLE opened = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return std::nullopt;
    const Owner<HANDLE, FileCloser> file(opened);
    const DWORD size = GetFileSize(file.get(), nullptr);
    if (size > largestFile)
        return std::nullopt;
    std::string bytes(size, '\0');
    DWORD got = 0;
    if (!ReadFile(file.get(), bytes.data(), size, &got, nullptr))
        return std::nullopt;
    bytes.resize(got);
    return bytes;
}

} // namespace corvina::app
