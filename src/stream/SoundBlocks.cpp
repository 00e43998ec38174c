#include "stream/SoundBlocks.h"

#include <cstring>

namespace corvina {

std::int32_t framesInBlock(const WAVEFORMATEX& record) noexcept {
    switch (record.wFormatTag) {
    case WAVE_FORMAT_ADPCM:
    case WAVE_FORMAT_IMA_ADPCM:
    case WAVE_FORMAT_GSM610: {
        WORD frames = 0;
        if (record.cbSize >= sizeof frames)
            std::memcpy(&frames, &record + 1, sizeof frames);
        return frames;
    }
    default:
        return 0;
    }
}

} // namespace corvina
