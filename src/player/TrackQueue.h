#pragma once

// What is sent to the device, and what of it is heard: fills block after block from the current
// track, goes on with the same one again or with the next one without a gap, and knows for each
// frame of the device which place of which track it is.
//
// Device frames count from the last reset of the device. One thread.

#include "player/PlayedTrack.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace corvina {

class TrackQueue {
public:
    using Track = std::shared_ptr<PlayedTrack>;
    struct Options {
        bool loops = false;
        bool exactly = false; // ends where the data ends; see PlayedTrack
        // Returns the track that follows, begun; null if there is none.
        std::function<Track()> next;
    };
    struct Place {
        Track track;
        std::int32_t milliseconds = 0;
    };
    struct Filled {
        std::int32_t bytes = 0; // of sound; what is behind them was left alone
        bool ended = false;     // nothing follows on this device
    };

    // The track is begun. Whatever was there before is forgotten, not closed.
    void begin(Track track);
    [[nodiscard]] Filled fill(std::span<std::uint8_t> block, const Options& options);
    // Fed on a device of its own, because its format differs; null if there is none.
    [[nodiscard]] Track takeOther() noexcept { return std::move(other_); }
    [[nodiscard]] const Track& current() const noexcept { return current_; }
    [[nodiscard]] const Track& other() const noexcept { return other_; }

    [[nodiscard]] bool uses(const cSoundSTRM* source) const noexcept;

    [[nodiscard]] Place placeAt(std::int64_t deviceFrame) const;
    // A track begins, once or again, that startedUntil has not passed.
    [[nodiscard]] bool waitsForNext() const noexcept { return segments_.size() > 1; }
    // The tracks that begin at or before the frame and were not returned yet, in order. What lies
    // before them is forgotten, and closed if nothing else uses it.
    [[nodiscard]] std::vector<Track> startedUntil(std::int64_t deviceFrame);
    // Fed, or to be fed on a device of their own, but not heard.
    [[nodiscard]] std::vector<Track> unheard() const;
    // The device was reset: only that track remains, and its next byte is frame 0.
    void restart(const Track& track);

    // Closes every track. If a source throws, the others are forgotten without being closed.
    void close();
    void forget() noexcept;

private:
    struct Segment {
        std::int64_t deviceFrame = 0;
        std::int64_t trackFrame = 0;
        Track track;
        bool announced = true;
    };

    [[nodiscard]] bool advance(const Options& options);
    // The current track begins, once or again.
    void append(bool announced);
    // It goes on at another place.
    void addSegment(bool announced);

    Track current_;
    Track other_;
    std::vector<Segment> segments_;
    std::int64_t fedFrames_ = 0;
    // Of the current track since it was begun or begun again: one without sound must not loop.
    std::int64_t bytesSinceBegin_ = 0;
};

} // namespace corvina
