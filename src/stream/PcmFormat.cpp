#include "stream/PcmFormat.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"

#include <cstdint>

namespace corvina {

WAVEFORMATEX pcmFormat(DWORD rate, WORD channels, WORD bits) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    const std::int16_t blockAlign = roundToInt16(bits / 8.0 * channels);
    format.nBlockAlign = static_cast<WORD>(blockAlign);
    format.nAvgBytesPerSec =
        static_cast<DWORD>(multiply32(blockAlign, static_cast<std::int32_t>(rate)));
    format.wBitsPerSample = bits;
    return format;
}

} // namespace corvina
