#include "PlaySession.h"

#include "ErrorWords.h"
#include "FileReport.h"
#include "MessageLoop.h"
#include "ProgressBar.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvina::app {

namespace {

constexpr DWORD refreshMs = 100;
constexpr auto stopPatience = std::chrono::seconds(5);
constexpr long seekSeconds = 5;

} // namespace

PlaySession::PlaySession(const Options& options, ConsoleScreen& screen, const Interrupt& interrupt)
    : options_(options), screen_(screen), interrupt_(interrupt),
      player_({[this] { playing_ = false; }, [this](const ErrorEvent& event) { onErr(event); }}) {}

long PlaySession::run() {
    while (!finished_) {
        startCurrent();
        while (playing_)
            waitAndHandle();
        screen_.clearStatus();
        moveOn();
    }
    return interrupt_.requested() ? interruptedExit : result_;
}

void PlaySession::startCurrent() {
    const std::wstring& file = options_.files[current_];
    after_ = After::next;
    deadline_.reset();
    errSeen_ = false;
    const long result = player_.start(file, options_.device);
    if (result != 0) {
        // The control has told its own failures through Err; a device's come as a result alone.
        if (!errSeen_)
            screen_.errorLine(describeResult(result, player_.errorText(result)));
        screen_.errorLine(L"  " + file);
        remember(result);
        return;
    }
    playing_ = true;
    // Nothing has been read yet, so this is where the first sound comes from.
    if (current_ == 0 && options_.startSeconds > 0)
        player_.seek(options_.startSeconds);
    for (const std::wstring& line : reportFile(player_, file))
        screen_.line(line);
    durationSeconds_ = player_.format().seconds;
    durationText_ = player_.timeText(std::lround(durationSeconds_));
}

void PlaySession::waitAndHandle() {
    showProgress();
    // Once the end was asked for, its event stays signalled: only the messages matter then.
    const HANDLE ending = interrupt_.requested() ? nullptr : interrupt_.waitable();
    pumpMessages(std::array{keys_.waitable(), ending}, refreshMs);

    while (const std::optional<Key> key = keys_.next())
        if (playing_)
            obey(*key);
    if (playing_ && interrupt_.requested() && !deadline_)
        endCurrent(After::leave);
    if (playing_ && deadline_ && Clock::now() > *deadline_) {
        // A buffer that the device refused never comes back, and then no DonePlay comes either.
        screen_.errorLine(L"The device did not finish; giving up.");
        playing_ = false;
        after_ = After::leave;
    }
}

void PlaySession::obey(Key key) {
    switch (key) {
    case Key::pause:
        player_.isPaused() ? player_.goOn() : player_.pause();
        break;
    case Key::back:
        player_.seek(std::max(0L, player_.positionSeconds() - seekSeconds));
        break;
    case Key::forward:
        player_.seek(player_.positionSeconds() + seekSeconds);
        break;
    case Key::next:
        endCurrent(After::next);
        break;
    case Key::previous:
        endCurrent(After::previous);
        break;
    case Key::stop:
        endCurrent(After::leave);
        break;
    }
}

void PlaySession::endCurrent(After after) {
    after_ = after;
    if (deadline_)
        return;
    deadline_ = Clock::now() + stopPatience;
    player_.stop();
}

void PlaySession::moveOn() {
    if (after_ == After::previous) {
        current_ -= current_ > 0 ? 1 : 0;
        return;
    }
    ++current_;
    finished_ =
        after_ == After::leave || interrupt_.requested() || current_ == options_.files.size();
}

void PlaySession::showProgress() {
    const std::size_t columns = screen_.statusColumns();
    if (columns == 0 || deadline_) // stopped: the file is closed already
        return;
    const long position = player_.positionSeconds();
    const double fraction = durationSeconds_ > 0 ? position / durationSeconds_ : 0;
    screen_.status(progressLine(fraction, player_.timeText(position), durationText_,
                                player_.isPaused() ? L"paused" : L"", columns));
}

void PlaySession::onErr(const ErrorEvent& event) {
    if (isMatterOfCourse(event)) {
        if (options_.verbose)
            screen_.errorLine(describe(event));
        return;
    }
    errSeen_ = true;
    screen_.errorLine(describe(event));
    if (!playing_)
        return; // a start that fails returns its result
    remember(event.number);
    if (event.function == L"WindowProcOut:waveOutWrite" && !deadline_)
        deadline_ = Clock::now() + stopPatience; // the buffer is lost, perhaps the device with it
}

void PlaySession::remember(long result) {
    if (result_ == 0)
        result_ = result;
}

} // namespace corvina::app
