#include "FileLists.h"

#include "CueSheet.h"
#include "Owners.h"
#include "TextFiles.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <windows.h>

namespace corvina::app {

namespace {

constexpr std::array<const wchar_t*, 4> listExtensions{L"m3u", L"m3u8", L"pls", L"cue"};
constexpr int deepestFolder = 32;

template <typename Extensions>
bool contains(const Extensions& extensions, const std::wstring& extension) {
    return std::ranges::find(extensions, extension) != extensions.end();
}

// Of "*.wav;*.mp3": wav and mp3.
std::vector<std::wstring> extensionsOf(std::wstring_view patterns) {
    std::vector<std::wstring> extensions;
    while (!patterns.empty()) {
        const std::size_t end = std::min(patterns.find(L';'), patterns.size());
        extensions.push_back(extensionOf(patterns.substr(0, end)));
        patterns.remove_prefix(std::min(end + 1, patterns.size()));
    }
    return extensions;
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

void addFolder(std::vector<Track>& tracks, const std::wstring& folder,
               const std::vector<std::wstring>& extensions, int depth) {
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
        else if (!isFolder && contains(extensions, extensionOf(name)))
            here.push_back(folder + name);
    } while (FindNextFileW(search.get(), &found));
    const auto byName = [](const std::wstring& a, const std::wstring& b) {
        return lowerCase(a) < lowerCase(b);
    };
    std::ranges::sort(here, byName);
    std::ranges::sort(folders, byName);
    tracks.insert(tracks.end(), here.begin(), here.end());
    if (depth < deepestFolder)
        for (const std::wstring& below : folders)
            addFolder(tracks, below, extensions, depth + 1);
}

} // namespace

std::wstring fileListPatterns() {
    std::wstring patterns;
    for (const wchar_t* extension : listExtensions)
        patterns.append(patterns.empty() ? L"*." : L";*.").append(extension);
    return patterns;
}

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

std::vector<Track> tracksOfList(std::wstring_view extension, std::string_view bytes,
                                std::wstring_view folder) {
    const std::vector<std::wstring> lines = linesOf(decode(bytes));
    const std::wstring kind = lowerCase(extension);
    if (kind == L"cue")
        return tracksOfCueSheet(lines, folder);
    std::vector<Track> tracks;
    for (std::wstring& name : kind == L"pls" ? namesInPls(lines) : namesInM3u(lines))
        if (std::wstring file = completed(std::move(name), folder); !file.empty())
            tracks.emplace_back(std::move(file));
    return tracks;
}

std::vector<Track> expandPaths(const std::vector<std::wstring>& paths,
                               const std::wstring& audioPatterns) {
    const std::vector<std::wstring> extensions = extensionsOf(audioPatterns);
    std::vector<Track> tracks;
    for (const std::wstring& path : paths) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_DIRECTORY) {
            const bool ended = path.ends_with(L"\\") || path.ends_with(L"/");
            addFolder(tracks, ended ? path : path + L"\\", extensions, 0);
            continue;
        }
        const std::wstring extension = extensionOf(path);
        std::optional<std::string> bytes;
        if (contains(listExtensions, extension))
            bytes = contentsOf(path);
        if (!bytes) {
            tracks.emplace_back(path);
            continue;
        }
        const std::wstring folder = path.substr(0, path.find_last_of(L"\\/") + 1);
        for (Track& track : tracksOfList(extension, *bytes, folder))
            tracks.push_back(std::move(track));
    }
    return tracks;
}

} // namespace corvina::app
