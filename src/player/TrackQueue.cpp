#include "player/TrackQueue.h"

#include "runtime/FirstFailure.h"

#include <algorithm>
#include <utility>

namespace corvina {
namespace {

// A source that cannot be closed now closes itself when it is destroyed.
void closeQuietly(PlayedTrack& track) noexcept {
    try {
        track.close();
    } catch (...) {
    }
}

} // namespace

void TrackQueue::begin(Track track) {
    forget();
    current_ = std::move(track);
    append(true);
}

void TrackQueue::append(bool announced) {
    addSegment(announced);
    bytesSinceBegin_ = 0;
}

void TrackQueue::addSegment(bool announced) {
    segments_.push_back({.deviceFrame = fedFrames_,
                         .trackFrame = current_->position(),
                         .track = current_,
                         .announced = announced});
}

TrackQueue::Filled TrackQueue::fill(std::span<std::uint8_t> block, const Options& options) {
    const auto wanted = static_cast<std::int32_t>(block.size());
    Filled filled;
    while (!filled.ended) {
        if (current_->goOnWhereMoved())
            addSegment(true);
        const std::int32_t got =
            current_->read(block.data() + filled.bytes, wanted - filled.bytes, options.exactly);
        filled.bytes += got;
        bytesSinceBegin_ += got;
        fedFrames_ += got / std::max(current_->format().frameBytes(), 1);
        if (current_->finished(options.exactly))
            filled.ended = !advance(options);
        if (filled.bytes == wanted)
            break;
    }
    return filled;
}

bool TrackQueue::advance(const Options& options) {
    if (options.loops) {
        if (bytesSinceBegin_ == 0 || !current_->seek(0))
            return false;
        append(true);
        return true;
    }
    Track next = options.next ? options.next() : nullptr;
    if (!next)
        return false;
    if (next->format() != current_->format()) {
        other_ = std::move(next);
        return false;
    }
    current_ = std::move(next);
    append(false);
    return true;
}

bool TrackQueue::uses(const cSoundSTRM* source) const noexcept {
    const auto has = [source](const Track& track) { return track && track->source() == source; };
    return has(current_) || has(other_) ||
           std::any_of(segments_.begin(), segments_.end(),
                       [&](const Segment& segment) { return has(segment.track); });
}

TrackQueue::Place TrackQueue::placeAt(std::int64_t deviceFrame) const {
    if (segments_.empty())
        return {};
    auto segment = std::find_if(segments_.rbegin(), segments_.rend(),
                                [&](const Segment& one) { return one.deviceFrame <= deviceFrame; });
    const Segment& found = segment == segments_.rend() ? segments_.front() : *segment;
    const std::int64_t frame =
        found.trackFrame + std::max<std::int64_t>(deviceFrame - found.deviceFrame, 0);
    return {.track = found.track,
            .milliseconds = static_cast<std::int32_t>(found.track->format().millisecondsOf(frame))};
}

std::vector<TrackQueue::Track> TrackQueue::startedUntil(std::int64_t deviceFrame) {
    std::vector<Track> started;
    std::size_t heard = 0;
    for (std::size_t i = 0; i < segments_.size() && segments_[i].deviceFrame <= deviceFrame; ++i) {
        heard = i;
        if (!std::exchange(segments_[i].announced, true))
            started.push_back(segments_[i].track);
    }
    for (; heard > 0; --heard) {
        const Track former = segments_.front().track;
        segments_.erase(segments_.begin());
        const bool used = former == current_ ||
                          std::any_of(segments_.begin(), segments_.end(),
                                      [&](const Segment& one) { return one.track == former; });
        if (!used)
            closeQuietly(*former);
    }
    return started;
}

std::vector<TrackQueue::Track> TrackQueue::unheard() const {
    std::vector<Track> tracks;
    for (const Segment& segment : segments_)
        if (!segment.announced)
            tracks.push_back(segment.track);
    if (other_)
        tracks.push_back(other_);
    return tracks;
}

void TrackQueue::restart(const Track& track) {
    begin(Track(track));
}

void TrackQueue::close() {
    std::vector<Track> tracks;
    // The current track is that of the last segment.
    for (const Segment& segment : segments_)
        tracks.push_back(segment.track);
    tracks.push_back(std::move(other_));
    forget();
    FirstFailure failure;
    for (const Track& track : tracks)
        if (track)
            failure.guard([&] { track->close(); });
    failure.rethrow();
}

void TrackQueue::forget() noexcept {
    segments_.clear();
    current_.reset();
    other_.reset();
    fedFrames_ = 0;
    bytesSinceBegin_ = 0;
}

} // namespace corvina
