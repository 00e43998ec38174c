#include "window/QueueView.h"

#include "FileReport.h"

#include <cmath>
#include <vector>

namespace corvina::app {

namespace {

std::wstring nameOf(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

} // namespace

void QueueView::showFiles() {
    std::vector<PlayerControls::FileLine> lines;
    for (std::size_t index = 0; index < queue_.files().size(); ++index)
        lines.push_back({nameOf(queue_.files()[index]), queue_.failure(index)});
    controls_.setFiles(lines, queue_.isActive() ? queue_.current() : lines.size());
}

void QueueView::showPosition() {
    const long position = queue_.player().positionSeconds();
    controls_.setSeekPosition(position);
    controls_.setTime(queue_.player().timeText(position) + L" / " + durationText_);
}

void QueueView::showStarted() {
    PlayerClient& player = queue_.player();
    const std::wstring& file = queue_.files()[queue_.current()];
    std::wstring title;
    std::wstring artist;
    for (const FileTag& tag : player.tags(file)) {
        if (std::wstring_view(tag.name) == L"Title")
            title = tag.value;
        if (std::wstring_view(tag.name) == L"Artist")
            artist = tag.value;
    }
    if (title.empty())
        title = nameOf(file);
    else if (!artist.empty())
        title = artist + L" \x2013 " + title;
    controls_.setHeadline(title, formatLine(player));
    SetWindowTextW(window_, (title + L" \x2013 Corvina").c_str());

    const long seconds = std::lround(player.format().seconds);
    durationText_ = player.timeText(seconds);
    controls_.setSeekRange(seconds);
    controls_.setMessage({});
    showFiles();
    controls_.selectFile(queue_.current());
}

void QueueView::showEnded() {
    SetWindowTextW(window_, L"Corvina");
    controls_.setHeadline(L"Corvina", {});
    controls_.setTime({});
    controls_.setSeekPosition(0);
    controls_.setSeekRange(0);
    showFiles();
}

void QueueView::showFailure(const std::wstring& words) {
    const std::wstring file = queue_.current() < queue_.files().size()
                                  ? nameOf(queue_.files()[queue_.current()]) + L": "
                                  : L"";
    controls_.setMessage(file + words);
    showFiles();
}

} // namespace corvina::app
