#pragma once

// The file that follows the one that plays: opened when the engine asks for it, which is before it
// is heard, and reported under its name until it is.

#include "player/PlaybackOptions.h"
#include "player/PlayerEvents.h"
#include "player/PlayerPlatform.h"
#include "player/TrackSupply.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvina {

class NextTrack final : public TrackSupply {
public:
    // observer: sees the converted blocks.
    NextTrack(PlayerEvents& events, PlaybackOptions& options, const PlayerPlatform& platform,
              cCallback* observer) noexcept
        : events_(events), options_(options), platform_(platform), observer_(observer) {}

    // What is heard, if that is not what was started, and no other file was opened since.
    [[nodiscard]] cSoundSTRM* heardSource() const noexcept {
        return heard_ ? heard_->sharedSource().get() : nullptr;
    }
    [[nodiscard]] std::wstring heardFile() const { return heard_ ? heard_->file() : L""; }
    void forgetHeard() noexcept { heard_.reset(); }

    // What follows: fed already, or still to be.
    [[nodiscard]] std::wstring file() const;

    TrackQueue::Track takeNext() override;
    void giveBack(const TrackQueue::Track& track) override;
    void nextHeard(const TrackQueue::Track& track) override;
    void reportFailures() override;

private:
    struct Failure {
        std::int32_t number = 0;
        std::wstring description;
    };

    [[nodiscard]] TrackQueue::Track open(const std::wstring& file);

    PlayerEvents& events_;
    PlaybackOptions& options_;
    const PlayerPlatform& platform_;
    cCallback* const observer_;
    std::weak_ptr<PlayedTrack> fed_; // taken last, but not heard yet
    TrackQueue::Track heard_;
    std::vector<Failure> failures_;
};

} // namespace corvina
