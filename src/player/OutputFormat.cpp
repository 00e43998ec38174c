#include "player/OutputFormat.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"

namespace corvina {

WAVEFORMATEX pcmFormat(std::int16_t channels, std::int32_t bitsPerSample, std::int32_t sampleRate) {
    const std::int16_t blockAlign = roundToInt16(bitsPerSample / 8.0 * channels);
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = static_cast<DWORD>(sampleRate);
    format.nAvgBytesPerSec = static_cast<DWORD>(multiply32(blockAlign, sampleRate));
    format.nBlockAlign = static_cast<WORD>(blockAlign);
    format.wBitsPerSample = static_cast<WORD>(narrow16(bitsPerSample));
    return format;
}

} // namespace corvina
