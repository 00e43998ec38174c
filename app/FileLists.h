#pragma once

// What a person may add to the queue besides single files: folders, and lists of files (M3U, M3U8,
// PLS, CUE).

#include <string>
#include <string_view>
#include <vector>

namespace corvina::app {

// The endings of files that are taken from folders, as patterns for a file dialog: "*.wav;*.mp3".
[[nodiscard]] std::wstring audioFilePatterns();
// The endings of lists, in the same form.
[[nodiscard]] std::wstring fileListPatterns();

// The files that a list names, in its order. Relative names are completed by the list's folder;
// addresses of the network are left out. UTF-8, UTF-16 with its mark, or the system's code page.
// extension: of the list, in any case; bytes: its contents; folder: with a backslash at its end.
[[nodiscard]] std::vector<std::wstring>
filesOfList(std::wstring_view extension, std::string_view bytes, std::wstring_view folder);

// The paths with each folder replaced by the audio files in it and below it, sorted by name, and
// each list by its files. A list that cannot be read stays as it is, to fail by name when played.
[[nodiscard]] std::vector<std::wstring> expandPaths(const std::vector<std::wstring>& paths);

} // namespace corvina::app
