#include "TerminalFront.h"

#include "FileReport.h"
#include "ProgressBar.h"

#include <cmath>

namespace corvina::app {

namespace {

constexpr long seekSeconds = 5;

} // namespace

void TerminalFront::onStarted(PlayQueue& queue) {
    PlayerClient& player = queue.player();
    const std::wstring& file = queue.files()[queue.current()];
    for (const std::wstring& line : reportFile(player, file))
        screen_.line(line);
    durationSeconds_ = player.format().seconds;
    durationText_ = player.timeText(std::lround(durationSeconds_));
}

void TerminalFront::onFailed(const PlayQueue& queue, const std::wstring& words) {
    screen_.errorLine(words);
    if (queue.current() < queue.files().size())
        screen_.errorLine(L"  " + queue.files()[queue.current()]);
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
        queue.seekBy(-seekSeconds);
        break;
    case Key::forward:
        queue.seekBy(seekSeconds);
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
    const long position = player.positionSeconds();
    const double fraction = durationSeconds_ > 0 ? position / durationSeconds_ : 0;
    screen_.status(progressLine(fraction, player.timeText(position), durationText_,
                                player.isPaused() ? L"paused" : L"", columns));
}

} // namespace corvina::app
