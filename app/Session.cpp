#include "Session.h"

#include "FileLists.h"
#include "MessageLoop.h"
#include "window/WindowPicture.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvina::app {

namespace {

constexpr DWORD tickMs = 100;
constexpr long longestStart = 2'000'000; // seconds; in milliseconds it is a number of the control's
// Long enough for the bars to have risen, short enough for a short tune.
constexpr auto pictureAfter = std::chrono::milliseconds(2500);

} // namespace

Session::Session(const Options& options, ConsoleScreen& screen, const Interrupt& interrupt)
    : options_(options), interrupt_(interrupt), terminal_(screen), queue_(handlers()) {
    queue_.setDevice(options.device.value_or(-1));
    for (Track& track : expandPaths(options.files, queue_.player().extensions()))
        queue_.add(std::move(track));
    if (!options.consoleOnly)
        window_ = std::make_unique<PlayerWindow>(queue_, options);
}

QueueHandlers Session::handlers() {
    return {
        [this] {
            started_ = std::chrono::steady_clock::now();
            terminal_.onStarted(queue_);
            if (window_)
                window_->onStarted();
        },
        [this] {
            terminal_.onEnded();
            if (window_)
                window_->onEnded();
        },
        [this](const std::wstring& words) {
            terminal_.onFailed(queue_, words);
            if (window_)
                window_->onFailed(words);
        },
        [this](const std::wstring& words) {
            if (options_.verbose)
                terminal_.onRemarked(words);
        },
        [this](const std::wstring& words) {
            terminal_.onRemarked(words);
            if (window_)
                window_->onNoticed(words);
        },
        [this] {
            if (window_)
                window_->onProgress();
        },
        [this] {
            if (window_)
                window_->onStateChanged();
        },
    };
}

long Session::run() {
    if (!options_.files.empty())
        queue_.play(0, 1000 * std::min(options_.startSeconds, longestStart));
    const auto handled = [this](MSG& message) { return window_ && window_->translate(message); };
    while (!leaving() || queue_.isActive()) {
        if (leaving())
            queue_.stop();
        // Once an end was requested its event stays signalled, and would end every wait at once.
        const HANDLE ending = interrupt_.requested() ? nullptr : interrupt_.waitable();
        pumpMessages(std::array{terminal_.waitable(), ending}, tickMs, handled);
        terminal_.tick(queue_);
        queue_.tick();
        savePictureInTime();
    }
    if (interrupt_.requested())
        return interruptedExit;
    if (window_ && !options_.pictureFile.empty() && !pictureSaved_ && queue_.result() == 0)
        terminal_.onRemarked(L"Too short for a picture of the window.");
    return queue_.result();
}

bool Session::leaving() const {
    if (interrupt_.requested() || terminal_.leaveRequested())
        return true;
    if (window_ && options_.pictureFile.empty())
        return !window_->isOpen();
    return !queue_.isActive();
}

void Session::savePictureInTime() {
    if (!window_ || options_.pictureFile.empty() || pictureSaved_ || !queue_.isPlaying() ||
        std::chrono::steady_clock::now() - started_ < pictureAfter)
        return;
    pictureSaved_ = true;
    if (!saveWindowPicture(window_->handle(), options_.pictureFile))
        window_->onFailed(L"The picture could not be saved.");
}

} // namespace corvina::app
