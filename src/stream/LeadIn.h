#pragma once

// What a decoder must be given before a place in compressed sound. It can begin only at the start
// of a block, and some decoders are right only a few blocks later.

#include <cstdint>

namespace corvina {

struct LeadIn {
    std::int64_t frames = 0; // come out before the place, and are not to be heard
    bool fromReset = false;  // what the decoder remembers of other blocks would be heard
};

} // namespace corvina
