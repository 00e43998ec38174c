#include "UnixPaths.h"

#include <algorithm>

#include <windows.h>

namespace corvina::app {

bool runsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

std::wstring windowsPath(std::wstring path) {
    if (path.empty() || path.front() != L'/')
        return path;
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return L"Z:" + path;
}

} // namespace corvina::app
