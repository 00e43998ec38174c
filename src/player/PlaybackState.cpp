#include "player/PlaybackState.h"

namespace corvina {

const char* nameOf(PlaybackState state) noexcept {
    switch (state) {
    case PlaybackState::closed:
        return "closed";
    case PlaybackState::opening:
        return "opening";
    case PlaybackState::feeding:
        return "feeding";
    case PlaybackState::draining:
        return "draining";
    case PlaybackState::closing:
        return "closing";
    case PlaybackState::closeRefused:
        return "closeRefused";
    }
    return "";
}

bool mayFollow(PlaybackState from, PlaybackState to) noexcept {
    using enum PlaybackState;
    switch (from) {
    case closed:
        return to == opening;
    case opening:
        return to == feeding || to == closed;
    case feeding: // closed: at once, because the host leaves
        return to == draining || to == closed;
    case draining: // feeding: the host moved the playback back
        return to == feeding || to == closing || to == closed;
    case closing:
        return to == closed || to == closeRefused;
    case closeRefused:
        return to == closed;
    }
    return false;
}

} // namespace corvina
