#pragma once

// What a line of the queue plays: a file, or a part of one as a CUE sheet names it.

#include <string>
#include <utility>

namespace corvina::app {

struct Track {
    // A whole file. Lists are mostly made of these, so a name converts by itself.
    Track(std::wstring path) : file(std::move(path)) {}
    Track(std::wstring path, long from, long to, std::wstring name)
        : file(std::move(path)), startMs(from), endMs(to), title(std::move(name)) {}

    [[nodiscard]] bool isWholeFile() const noexcept { return startMs == 0 && endMs == 0; }
    // Whether the other one goes on in the same file where this one ends.
    [[nodiscard]] bool runsInto(const Track& other) const noexcept {
        return endMs > 0 && other.startMs == endMs && other.file == file;
    }

    friend bool operator==(const Track&, const Track&) = default;

    std::wstring file;
    long startMs = 0;
    long endMs = 0;     // 0 for the end of the file
    std::wstring title; // as the sheet says; empty for a whole file
};

// What a list shows: the title, or the file's name without its folder.
[[nodiscard]] inline std::wstring nameOf(const Track& track) {
    return track.title.empty() ? track.file.substr(track.file.find_last_of(L"\\/") + 1)
                               : track.title;
}

} // namespace corvina::app
