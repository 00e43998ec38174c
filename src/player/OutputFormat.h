#pragma once

// The wave format of the output device as the player first sets it up from a source's numbers.

#include <cstdint>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

// PCM of that shape. A block or a rate that does not fit its field raises Overflow.
[[nodiscard]] WAVEFORMATEX pcmFormat(std::int16_t channels, std::int32_t bitsPerSample,
                                     std::int32_t sampleRate);

} // namespace corvina
