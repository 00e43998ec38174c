#include "window/QueueView.h"

#include "FileReport.h"

#include <utility>
#include <vector>

namespace corvina::app {

void QueueView::showTracks() {
    std::vector<TrackListBox::Line> lines;
    for (std::size_t index = 0; index < queue_.tracks().size(); ++index)
        lines.push_back({nameOf(queue_.tracks()[index]), queue_.failure(index)});
    controls_.list().setLines(lines, queue_.isActive() ? queue_.current() : lines.size());
}

void QueueView::showPosition() {
    controls_.seekBar().show(queue_.positionMs(), queue_.durationMs());
    PlayerClient& player = queue_.player();
    const bool sounds = queue_.isPlaying() && !player.isPaused();
    controls_.transport().meter().show(sounds ? player.level(1) : 0, sounds ? player.level(2) : 0);
}

void QueueView::showState() {
    controls_.transport().setPlaying(queue_.player().state() == PLAY_PLAYING);
    showPosition();
}

void QueueView::showStarted() {
    PlayerClient& player = queue_.player();
    const Track& track = queue_.tracks()[queue_.current()];
    std::wstring title;
    std::wstring artist;
    for (const FileTag& tag : player.tags(track.file)) {
        if (std::wstring_view(tag.name) == L"Title")
            title = tag.value;
        if (std::wstring_view(tag.name) == L"Artist")
            artist = tag.value;
    }
    if (title.empty() || !track.title.empty())
        title = nameOf(track);
    if (!artist.empty())
        title = artist + L" \x2013 " + title;
    controls_.headline().setText(title, formatLine(player, queue_.durationMs()));
    controls_.headline().setCover(player.cover());
    SetWindowTextW(window_, (title + L" \x2013 Corvina").c_str());

    controls_.setMessage(std::exchange(notice_, {}));
    showTracks();
    controls_.list().select(queue_.current());
    showState();
}

void QueueView::showEnded() {
    SetWindowTextW(window_, L"Corvina");
    controls_.headline().setText(L"Corvina", {});
    controls_.headline().setCover(IPicturePtr());
    showTracks();
    showState();
}

void QueueView::showFailure(const std::wstring& words) {
    const std::wstring name = queue_.current() < queue_.tracks().size()
                                  ? nameOf(queue_.tracks()[queue_.current()]) + L": "
                                  : L"";
    controls_.setMessage(name + words);
    showTracks();
}

void QueueView::showNotice(const std::wstring& words) {
    notice_ = queue_.isPlaying() ? std::wstring() : words;
    controls_.setMessage(words);
}

} // namespace corvina::app
