#pragma once

// The audio sources of the player.

#include "stream/cSoundSTRM.h"

#include <memory>
#include <vector>

namespace corvina {

// One new object of each source class, in the order in which they are tried for a file.
[[nodiscard]] std::vector<std::unique_ptr<cSoundSTRM>> makeSources();

} // namespace corvina
