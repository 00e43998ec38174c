#include "TerminalFront.h"

#include "FileReport.h"
#include "ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvina::app {

namespace {

constexpr long seekMs = 5000;
constexpr long volumeStep = 5;

long wholeSeconds(long milliseconds) {
    return std::lround(milliseconds / 1000.0);
}

// What is unusual about the sound; mostly nothing.
std::wstring noteOf(PlayerClient& player) {
    std::wstring note = player.isPaused() ? L"paused" : L"";
    if (player.mute())
        note += note.empty() ? L"mute" : L", mute";
    else if (const long volume = player.volume(); volume < 100)
        note += (note.empty() ? L"volume " : L", volume ") + std::to_wstring(volume);
    return note;
}

void changeVolume(PlayerClient& player, long step) {
    player.setVolume(std::clamp(player.volume() + step, 0L, 100L));
}

} // namespace

void TerminalFront::onStarted(PlayQueue& queue) {
    PlayerClient& player = queue.player();
    const Track& track = queue.tracks()[queue.current()];
    durationMs_ = queue.durationMs();
    durationText_ = player.timeText(wholeSeconds(durationMs_));
    std::vector<std::wstring> lines = reportFile(player, track.file, durationMs_);
    lines.front() = nameOf(track);
    for (const std::wstring& line : lines)
        screen_.line(line);
}

void TerminalFront::onFailed(const PlayQueue& queue, const std::wstring& words) {
    screen_.errorLine(words);
    if (queue.current() < queue.tracks().size())
        screen_.errorLine(L"  " + queue.tracks()[queue.current()].file);
}

void TerminalFront::tick(PlayQueue& queue) {
    while (const std::optional<Key> key = keys_.next())
        carryOut(queue, *key);
    showProgress(queue);
}

void TerminalFront::carryOut(PlayQueue& queue, Key key) {
    switch (key) {
    case Key::pause:
        queue.togglePause();
        break;
    case Key::back:
        queue.seekBy(-seekMs);
        break;
    case Key::forward:
        queue.seekBy(seekMs);
        break;
    case Key::next:
        queue.next();
        break;
    case Key::previous:
        queue.previous();
        break;
    case Key::shuffle:
        queue.setShuffled(!queue.shuffled());
        screen_.line(queue.shuffled() ? L"Shuffled" : L"In order");
        break;
    case Key::repeat:
        queue.setRepeated(!queue.repeated());
        screen_.line(queue.repeated() ? L"The list is repeated" : L"The list is played once");
        break;
    case Key::loop:
        queue.setLooping(!queue.looping());
        screen_.line(queue.looping() ? L"The file is repeated" : L"The file is played once");
        break;
    case Key::louder:
    case Key::quieter:
        changeVolume(queue.player(), key == Key::louder ? volumeStep : -volumeStep);
        break;
    case Key::mute:
        queue.player().setMute(!queue.player().mute());
        break;
    case Key::quit:
        leaveRequested_ = true;
        [[fallthrough]];
    case Key::stop:
        queue.stop();
        break;
    }
}

void TerminalFront::showProgress(PlayQueue& queue) {
    const std::size_t columns = screen_.statusColumns();
    if (columns == 0 || !queue.isPlaying())
        return;
    PlayerClient& player = queue.player();
    const long position = queue.positionMs();
    const double fraction = durationMs_ > 0 ? static_cast<double>(position) / durationMs_ : 0;
    screen_.status(progressLine(fraction, player.timeText(wholeSeconds(position)), durationText_,
                                noteOf(player), columns));
}

} // namespace corvina::app
