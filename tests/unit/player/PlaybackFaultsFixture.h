#pragma once

// The fixture of playback in which something fails.

#include "PlaybackFixture.h"

namespace corvina::test {

class PlaybackFaults : public Playback {
protected:
    static constexpr auto once = Faults::Lasting::once;
    static constexpr auto forever = Faults::Lasting::forever;

    // The device is closed, and its close message still waits.
    void playUntilClosed() {
        startAndFill();
        host.player.PlayStop();
        handleReturnedBuffers();
        host.events.clear();
    }
};

} // namespace corvina::test
