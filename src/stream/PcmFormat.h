#pragma once

// The format record of plain PCM.

#include <windows.h>

#include <mmreg.h>

namespace corvina {

// The block align is bits / 8 * channels, rounded: one channel of 4 bits has none. A block align or
// byte rate that its field cannot hold raises Overflow.
[[nodiscard]] WAVEFORMATEX pcmFormat(DWORD rate, WORD channels, WORD bits);

} // namespace corvina
