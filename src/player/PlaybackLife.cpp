#include "player/PlaybackLife.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvina {

PlayState PlaybackLife::state() const noexcept {
    if (running_.empty())
        return PLAY_STOPPED;
    return paused_ ? PLAY_PAUSED : PLAY_PLAYING;
}

PlaybackLife::Playback* PlaybackLife::find(std::uint32_t playback) noexcept {
    const auto found = std::find_if(running_.begin(), running_.end(),
                                    [&](const Playback& one) { return one.number == playback; });
    return found == running_.end() ? nullptr : &*found;
}

void PlaybackLife::reportState() {
    const PlayState now = state();
    if (std::exchange(reported_, now) != now)
        events_.StateChanged(now);
}

void PlaybackLife::begun(std::uint32_t playback) {
    running_.push_back({.number = playback});
    paused_ = false;
    reportState();
}

void PlaybackLife::setReason(std::uint32_t playback, PlayEndReason reason) noexcept {
    Playback* const found = find(playback);
    if (found && !std::exchange(found->reasonSet, true))
        found->reason = reason;
}

void PlaybackLife::setPaused(bool paused) {
    paused_ = paused;
    reportState();
}

void PlaybackLife::setDeviceClosed(std::uint32_t playback, bool closed) noexcept {
    if (Playback* const found = find(playback))
        found->deviceClosed = closed;
}

void PlaybackLife::raise(std::vector<Playback> ended) {
    for (const Playback& one : ended)
        std::erase_if(running_, [&](const Playback& other) { return other.number == one.number; });
    reportState();
    for (const Playback& one : ended)
        events_.Ended(one.reason);
}

void PlaybackLife::raiseDue() {
    std::vector<Playback> ended;
    std::copy_if(running_.begin(), running_.end(), std::back_inserter(ended),
                 [](const Playback& one) { return one.deviceClosed; });
    raise(std::move(ended));
}

void PlaybackLife::end(std::uint32_t playback, PlayEndReason reason) {
    setReason(playback, reason);
    if (const Playback* const found = find(playback))
        raise({*found});
}

void PlaybackLife::endAll(PlayEndReason reason) {
    for (const Playback& one : std::vector<Playback>(running_))
        setReason(one.number, reason);
    raise(running_);
}

} // namespace corvina
