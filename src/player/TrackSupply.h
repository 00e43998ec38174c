#pragma once

#include "player/TrackQueue.h"

namespace corvina {

// Where the engine gets what follows a track. The functions raise no events.
class TrackSupply {
public:
    // The next track, begun; null if there is none.
    virtual TrackQueue::Track takeNext() = 0;
    // It will not be heard after all.
    virtual void giveBack(const TrackQueue::Track& track) = 0;
    // It is heard from now on.
    virtual void nextHeard(const TrackQueue::Track& track) = 0;
    // Reports what takeNext could not; raises events.
    virtual void reportFailures() = 0;

protected:
    ~TrackSupply() = default;
};

} // namespace corvina
