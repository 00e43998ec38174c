#include "CueSheet.h"

#include "FileLists.h"
#include "TextFiles.h"

#include <cwchar>
#include <optional>

namespace corvina::app {

namespace {

struct SheetTrack {
    int file = 0; // in the order of the sheet
    long startMs = 0;
    bool isAudio = true;
    std::wstring number;
    std::wstring title;
};

// "name" WAVE, or name WAVE; a title has nothing behind it.
std::wstring unquoted(std::wstring_view rest, bool hasKindBehind) {
    rest = trimmed(rest);
    if (rest.starts_with(L"\""))
        return std::wstring(rest.substr(1, rest.find(L'"', 1) - 1));
    return std::wstring(hasKindBehind ? rest.substr(0, rest.find_last_of(L' ')) : rest);
}

// Minutes, seconds and frames, of which a second has 75.
std::optional<long> timeOf(const wchar_t* text) {
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned frames = 0;
    if (std::swscanf(text, L"%5u:%2u:%2u", &minutes, &seconds, &frames) != 3 || minutes > 30000 ||
        seconds > 59 || frames > 74)
        return std::nullopt;
    return static_cast<long>((minutes * 60 + seconds) * 1000 + (frames * 1000 + 37) / 75);
}

class Sheet {
public:
    void read(const std::wstring& line) {
        const std::wstring lower = lowerCase(line);
        const auto is = [&](std::wstring_view word) { return lower.starts_with(word); };
        if (is(L"file ")) {
            files_.push_back(unquoted(std::wstring_view(line).substr(5), true));
            open_.reset();
        } else if (is(L"track ") && !files_.empty()) {
            open_ = SheetTrack{};
            open_->isAudio = lower.ends_with(L"audio");
            open_->number = unquoted(std::wstring_view(line).substr(6), true);
        } else if (is(L"title ") && open_) {
            open_->title = unquoted(std::wstring_view(line).substr(6), false);
        } else if (is(L"index 01 ") || is(L"index 1 ")) {
            begin(timeOf(line.c_str() + line.find(L' ', 6)));
        } else if (is(L"index ") && open_) {
            waiting_ = open_; // the pause before the track, which may lie in the file before
        }
    }

    [[nodiscard]] std::vector<Track> tracks(std::wstring_view folder) const {
        std::vector<Track> result;
        for (int file = 0; file < static_cast<int>(files_.size()); ++file)
            addTracksOf(result, file, files_[static_cast<std::size_t>(file)], folder);
        return result;
    }

private:
    void begin(std::optional<long> time) {
        if (!open_)
            open_ = waiting_;
        waiting_.reset();
        if (!open_ || !time)
            return;
        open_->file = static_cast<int>(files_.size()) - 1;
        open_->startMs = *time;
        begun_.push_back(*open_);
        open_.reset();
    }

    void addTracksOf(std::vector<Track>& result, int file, const std::wstring& name,
                     std::wstring_view folder) const {
        const std::wstring path = name.empty() ? name : completed(name, folder);
        if (path.empty())
            return;
        bool any = false;
        for (std::size_t index = 0; index < begun_.size(); ++index) {
            const SheetTrack& track = begun_[index];
            if (track.file != file)
                continue;
            any = true;
            const bool followed = index + 1 < begun_.size() && begun_[index + 1].file == file &&
                                  begun_[index + 1].startMs > track.startMs;
            if (!track.isAudio)
                continue;
            Track& added = result.emplace_back(
                path, track.startMs, followed ? begun_[index + 1].startMs : 0, track.title);
            if (added.title.empty() && !added.isWholeFile())
                added.title = L"Track " + track.number;
        }
        if (!any)
            result.emplace_back(path);
    }

    std::vector<std::wstring> files_;
    std::vector<SheetTrack> begun_;
    std::optional<SheetTrack> open_;    // its INDEX 01 has not come yet
    std::optional<SheetTrack> waiting_; // the same, while another FILE may come
};

} // namespace

std::vector<Track> tracksOfCueSheet(const std::vector<std::wstring>& lines,
                                    std::wstring_view folder) {
    Sheet sheet;
    for (const std::wstring& line : lines)
        sheet.read(line);
    return sheet.tracks(folder);
}

} // namespace corvina::app
