#include "FileLists.h"

#include "Owners.h"
#include "Unicode.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

namespace corvina::app {

namespace {

constexpr std::array<const wchar_t*, 17> audioExtensions{
    L"wav", L"mp3", L"wma",  L"wmv",  L"ogg", L"oga", L"opus", L"flac", L"ape",
    L"au",  L"snd", L"aiff", L"aifc", L"aif", L"voc", L"vox",  L"cda"};
constexpr std::array<const wchar_t*, 4> listExtensions{L"m3u", L"m3u8", L"pls", L"cue"};
constexpr int deepestFolder = 32;
constexpr DWORD largestList = 16 * 1024 * 1024; // bytes

template <typename Extensions>
std::wstring patternsOf(const Extensions& extensions) {
    std::wstring patterns;
    for (const wchar_t* extension : extensions)
        patterns.append(patterns.empty() ? L"*." : L";*.").append(extension);
    return patterns;
}

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

template <typename Extensions>
bool contains(const Extensions& extensions, const std::wstring& extension) {
    return std::ranges::find(extensions, extension) != extensions.end();
}

std::wstring decodeWith(UINT codePage, DWORD flags, std::string_view bytes) {
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(std::max(size, 0)), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.data(), length, text.data(), size);
    return text;
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

// Empty for an address of the network.
std::wstring completed(std::wstring name, std::wstring_view folder) {
    if (name.find(L"://") != std::wstring::npos)
        return {};
    std::ranges::replace(name, L'/', L'\\');
    const bool hasDrive = name.size() > 1 && name[1] == L':';
    if (hasDrive || name.starts_with(L"\\\\"))
        return name;
    if (name.starts_with(L"\\")) // from the root of the list's drive
        return folder.size() > 1 && folder[1] == L':' ? std::wstring(folder.substr(0, 2)) + name
                                                      : name;
    return std::wstring(folder) + name;
}

std::vector<std::wstring> namesInM3u(const std::vector<std::wstring>& lines) {
    std::vector<std::wstring> names;
    std::ranges::copy_if(lines, std::back_inserter(names),
                         [](const std::wstring& line) { return line[0] != L'#'; });
    return names;
}

// "File1=name", in the order of the numbers.
std::vector<std::wstring> namesInPls(const std::vector<std::wstring>& lines) {
    std::map<unsigned long, std::wstring> numbered;
    for (const std::wstring& line : lines) {
        const std::size_t equals = line.find(L'=');
        if (equals == std::wstring::npos || !lowerCase(line).starts_with(L"file"))
            continue;
        const std::wstring_view name = trimmed(std::wstring_view(line).substr(equals + 1));
        if (!name.empty())
            numbered.emplace(std::wcstoul(line.c_str() + 4, nullptr, 10), name);
    }
    std::vector<std::wstring> names;
    for (const auto& [number, name] : numbered)
        names.push_back(name);
    return names;
}

// FILE "name" WAVE, or FILE name WAVE.
std::vector<std::wstring> namesInCue(const std::vector<std::wstring>& lines) {
    std::vector<std::wstring> names;
    for (const std::wstring& line : lines) {
        if (!lowerCase(line).starts_with(L"file "))
            continue;
        const std::wstring_view rest = trimmed(std::wstring_view(line).substr(5));
        const bool quoted = rest.starts_with(L"\"");
        const std::wstring_view name = quoted ? rest.substr(1, rest.find(L'"', 1) - 1)
                                              : rest.substr(0, rest.find_last_of(L' '));
        if (!name.empty())
            names.emplace_back(name);
    }
    return names;
}

struct FileCloser {
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};

std::optional<std::string> contentsOf(const std::wstring& path) {
    const HANDLE opened = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return std::nullopt;
    const Owner<HANDLE, FileCloser> file(opened);
    const DWORD size = GetFileSize(file.get(), nullptr);
    if (size > largestList)
        return std::nullopt;
    std::string bytes(size, '\0');
    DWORD got = 0;
    if (!ReadFile(file.get(), bytes.data(), size, &got, nullptr))
        return std::nullopt;
    bytes.resize(got);
    return bytes;
}

void addFolder(std::vector<std::wstring>& files, const std::wstring& folder, int depth) {
    WIN32_FIND_DATAW found;
    const HANDLE first = FindFirstFileW((folder + L"*").c_str(), &found);
    if (first == INVALID_HANDLE_VALUE)
        return;
    const FileSearch search(first);
    std::vector<std::wstring> here;
    std::vector<std::wstring> folders;
    do {
        const std::wstring name = found.cFileName;
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        // A link may lead back to a folder above.
        const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if (isFolder && name != L"." && name != L".." && !isLink)
            folders.push_back(folder + name + L"\\");
        else if (!isFolder && contains(audioExtensions, extensionOf(name)))
            here.push_back(folder + name);
    } while (FindNextFileW(search.get(), &found));
    const auto byName = [](const std::wstring& a, const std::wstring& b) {
        return lowerCase(a) < lowerCase(b);
    };
    std::ranges::sort(here, byName);
    std::ranges::sort(folders, byName);
    files.insert(files.end(), here.begin(), here.end());
    if (depth < deepestFolder)
        for (const std::wstring& below : folders)
            addFolder(files, below, depth + 1);
}

} // namespace

std::wstring audioFilePatterns() {
    return patternsOf(audioExtensions);
}

std::wstring fileListPatterns() {
    return patternsOf(listExtensions);
}

std::vector<std::wstring> filesOfList(std::wstring_view extension, std::string_view bytes,
                                      std::wstring_view folder) {
    const std::vector<std::wstring> lines = linesOf(decode(bytes));
    const std::wstring kind = lowerCase(extension);
    std::vector<std::wstring> names = kind == L"pls"   ? namesInPls(lines)
                                      : kind == L"cue" ? namesInCue(lines)
                                                       : namesInM3u(lines);
    std::vector<std::wstring> files;
    for (std::wstring& name : names)
        if (std::wstring file = completed(std::move(name), folder); !file.empty())
            files.push_back(std::move(file));
    return files;
}

std::vector<std::wstring> expandPaths(const std::vector<std::wstring>& paths) {
    std::vector<std::wstring> files;
    for (const std::wstring& path : paths) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_DIRECTORY) {
            const bool ended = path.ends_with(L"\\") || path.ends_with(L"/");
            addFolder(files, ended ? path : path + L"\\", 0);
            continue;
        }
        const std::wstring extension = extensionOf(path);
        std::optional<std::string> bytes;
        if (contains(listExtensions, extension))
            bytes = contentsOf(path);
        if (!bytes) {
            files.push_back(path);
            continue;
        }
        const std::wstring folder = path.substr(0, path.find_last_of(L"\\/") + 1);
        for (std::wstring& file : filesOfList(extension, *bytes, folder))
            files.push_back(std::move(file));
    }
    return files;
}

} // namespace corvina::app
