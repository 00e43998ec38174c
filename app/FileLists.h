#pragma once

// What a person may add to the queue besides single files: folders, and lists of files (M3U, M3U8,
// PLS, CUE).

#include "Track.h"

#include <string>
#include <string_view>
#include <vector>

namespace corvina::app {

// The endings of lists, as patterns for a file dialog: "*.m3u;*.pls".
[[nodiscard]] std::wstring fileListPatterns();

// A name in a list, completed by the list's folder (with a backslash at its end). Empty for an
// address of the network.
[[nodiscard]] std::wstring completed(std::wstring name, std::wstring_view folder);

// The tracks that a list names, in its order. Relative names are completed by the list's folder;
// addresses of the network are left out. UTF-8, UTF-16 with its mark, or the system's code page.
// extension: of the list, in any case; bytes: its contents; folder: with a backslash at its end.
[[nodiscard]] std::vector<Track> tracksOfList(std::wstring_view extension, std::string_view bytes,
                                              std::wstring_view folder);

// The paths with each folder replaced by the audio files in it and below it, sorted by name, and
// each list by its tracks. A list that cannot be read stays as it is, to fail by name when played.
// audioPatterns: the files that are taken from folders, "*.wav;*.mp3", as the control lists them.
[[nodiscard]] std::vector<Track> expandPaths(const std::vector<std::wstring>& paths,
                                             const std::wstring& audioPatterns);

} // namespace corvina::app
