#pragma once

// How the name of a file is passed to the system and to libraries. The functions that take ANSI
// names come first; a name that they cannot take, because of its characters, its length or the code
// page that the host has set for them, goes to their counterparts for wide names.

#include <string>
#include <string_view>

namespace corvina {

struct FileName {
    // No file has this name: it is empty, holds a character of code 0 or names a device.
    bool impossible = false;
    bool fitsAnsi = false;
    std::string ansi;  // if it fits
    std::wstring wide; // a long name as the full path behind "\\?\"
};

[[nodiscard]] FileName fileName(const std::wstring& path);

// From the root, by the current folder. The path itself if there is no such folder.
[[nodiscard]] std::wstring fullPath(const std::wstring& path);

// Whether the system takes a name for a device of old, whatever its folder and its extension:
// "AUX.ogg" is the serial port, and reading waits for what it sends.
[[nodiscard]] bool isDeviceName(std::wstring_view path);

} // namespace corvina
