#include "stream/ConverterFormats.h"

#include "stream/PcmFormat.h"
#include "stream/cSoundSTRM.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

// In these formats the number of samples in a block follows the record; in the first one also the
// seven pairs of coefficients, and their number.
bool countsSamples(const WAVEFORMATEX& record) {
    switch (record.wFormatTag) {
    case WAVE_FORMAT_ADPCM:
        return record.cbSize == 2 * sizeof(WORD) + 7 * sizeof(ADPCMCOEFSET);
    case WAVE_FORMAT_IMA_ADPCM:
    case WAVE_FORMAT_GSM610:
        return record.cbSize == sizeof(WORD);
    default:
        return false;
    }
}

} // namespace

const WAVEFORMATEX* deliveredRecord(cSoundSTRM& source, WAVEFORMATEX& made) {
    const WAVEFORMATEX* const record = source.WFXPointer();
    constexpr WORD deliveredBits = 16;
    if (!record || record->wFormatTag != WAVE_FORMAT_PCM ||
        record->wBitsPerSample == deliveredBits || !source.Info().Force16Bit() ||
        source.Info().BitsPerSample() != deliveredBits)
        return record;
    made = pcmFormat(record->nSamplesPerSec, record->nChannels, deliveredBits);
    return &made;
}

bool isComplete(const WAVEFORMATEX& record) {
    WORD samplesInBlock = 1;
    if (countsSamples(record))
        std::memcpy(&samplesInBlock, &record + 1, sizeof samplesInBlock);
    return record.nChannels != 0 && record.nSamplesPerSec != 0 && record.nBlockAlign != 0 &&
           samplesInBlock != 0;
}

std::uint16_t outputWidth(std::uint16_t sourceBits, bool force16Bit) {
    return force16Bit || sourceBits > 8 ? 16 : 8;
}

std::int64_t bytesInReach(const WAVEFORMATEX& format, std::int64_t bytes) {
    if (format.wFormatTag != WAVE_FORMAT_PCM)
        return bytes + largestBlock;
    const int sampleBytes = format.nChannels * ((format.wBitsPerSample + 7) / 8);
    return bytes * std::max(1, (sampleBytes + format.nBlockAlign - 1) / format.nBlockAlign);
}

std::optional<LinearFormat> linearBeyondManager(const WAVEFORMATEX& record) {
    const bool plain = record.wFormatTag == WAVE_FORMAT_PCM && record.nChannels <= 2 &&
                       record.wBitsPerSample <= 16;
    return plain ? std::nullopt : linearFormat(record);
}

} // namespace corvina
