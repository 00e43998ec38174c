#pragma once

// Moves decoded sound to the wave output device.

namespace corvina {

class PlaybackEngine {};

} // namespace corvina
