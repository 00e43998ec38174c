#include "stream/FileName.h"

#include "platform/AnsiText.h"
#include "runtime/Text.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <windows.h>

namespace corvina {
namespace {

constexpr std::wstring_view verbatim = L"\\\\?\\";
constexpr std::wstring_view device = L"\\\\.\\";

// The form in which the system takes paths of up to 32767 characters.
std::wstring longForm(const std::wstring& full) {
    if (full.starts_with(L"\\\\"))
        return std::wstring(verbatim) + L"UNC" + full.substr(1);
    return std::wstring(verbatim) + full;
}

// Whether the functions for ANSI names read this one as it was written. A host may have switched
// them to the code page of the console, which has only the characters of ASCII in the same places.
bool isReadAsAnsi(std::wstring_view path) {
    return ::AreFileApisANSI() || std::all_of(path.begin(), path.end(),
                                              [](wchar_t character) { return character < 0x80; });
}

} // namespace

std::wstring fullPath(const std::wstring& path) {
    const DWORD size = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    const DWORD length = ::GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
    if (length == 0 || length >= size)
        return path;
    full.resize(length);
    return full;
}

FileName fileName(const std::wstring& path) {
    FileName name;
    if (path.empty() || path.find(L'\0') != std::wstring::npos || isDeviceName(path)) {
        name.impossible = true;
        return name;
    }
    const bool prefixed = path.starts_with(verbatim) || path.starts_with(device);
    const std::wstring full = prefixed ? path : fullPath(path);
    const bool isLong = full.size() >= MAX_PATH;
    name.wide = isLong && !prefixed ? longForm(full) : path;
    AnsiText ansi = toAnsi(path);
    name.fitsAnsi = !ansi.lossy && !isLong && isReadAsAnsi(path);
    if (name.fitsAnsi)
        name.ansi = std::move(ansi.text);
    return name;
}

bool isDeviceName(std::wstring_view path) {
    if (path.starts_with(verbatim) || path.starts_with(device))
        return false;
    std::wstring_view name = path.substr(path.find_last_of(L"\\/") + 1);
    // A drive in front of the name, "C:aux", is no part of it.
    if (name.size() > 1 && name[1] == L':')
        name.remove_prefix(2);
    name = trim(name.substr(0, name.find_first_of(L".:")));
    const std::wstring upper = upperCase(name);
    constexpr std::wstring_view devices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    if (std::find(std::begin(devices), std::end(devices), upper) != std::end(devices))
        return true;
    if (upper.size() != 4 || (!upper.starts_with(L"COM") && !upper.starts_with(L"LPT")))
        return false;
    // The superscripts of code page 1252 count as digits here.
    return std::wstring_view(L"123456789\u00B9\u00B2\u00B3").find(upper[3]) !=
           std::wstring_view::npos;
}

} // namespace corvina
