#include "Discs.h"

#include "Owners.h"

#include <algorithm>
#include <windows.h>

namespace corvina::app {

namespace {

std::vector<std::wstring> tracksIn(const std::wstring& root) {
    std::vector<std::wstring> tracks;
    WIN32_FIND_DATAW found;
    const HANDLE first = FindFirstFileW((root + L"*.cda").c_str(), &found);
    if (first == INVALID_HANDLE_VALUE)
        return tracks;
    const FileSearch search(first);
    do
        tracks.push_back(root + found.cFileName);
    while (FindNextFileW(search.get(), &found));
    std::sort(tracks.begin(), tracks.end()); // names have two digits
    return tracks;
}

} // namespace

std::vector<DiscDrive> listDiscDrives() {
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS);
    std::vector<DiscDrive> drives;
    const DWORD present = GetLogicalDrives();
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        const std::wstring name{letter, L':'};
        if ((present >> (letter - L'A') & 1) != 0 &&
            GetDriveTypeW((name + L"\\").c_str()) == DRIVE_CDROM)
            drives.push_back({name, tracksIn(name + L"\\")});
    }
    SetErrorMode(mode);
    return drives;
}

} // namespace corvina::app
