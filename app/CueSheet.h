#pragma once

// CUE sheets: the tracks of an album, each a part of a file or a file of its own.

#include "Track.h"

#include <string>
#include <string_view>
#include <vector>

namespace corvina::app {

// The tracks of a sheet in its order. A track begins at its INDEX 01 and ends where the next one of
// the same file begins; the last one of a file ends with the file. A file without tracks is one
// track. Tracks of data are left out, but end the one before.
// lines: trimmed, none blank; folder: the sheet's, with a backslash at its end.
[[nodiscard]] std::vector<Track> tracksOfCueSheet(const std::vector<std::wstring>& lines,
                                                  std::wstring_view folder);

} // namespace corvina::app
