#include "player/WaveLength.h"

#include "stream/FileAccess.h"
#include "stream/RiffChunk.h"
#include "stream/cSoundSTRM.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

// Compressed sound comes in blocks of as many frames as the record says behind its common part.
std::int64_t framesInBlock(const WAVEFORMATEX& format) {
    switch (format.wFormatTag) {
    case WAVE_FORMAT_PCM:
    case WAVE_FORMAT_ALAW:
    case WAVE_FORMAT_MULAW:
        return 1;
    case WAVE_FORMAT_ADPCM:
    case WAVE_FORMAT_IMA_ADPCM:
    case WAVE_FORMAT_GSM610: {
        WORD frames = 0;
        if (format.cbSize >= sizeof frames)
            std::memcpy(&frames, &format + 1, sizeof frames);
        return frames;
    }
    default:
        return 0;
    }
}

// The chunk in which writers of compressed sound count its frames. 0 if there is none.
std::int64_t countedByWriter(const std::wstring& file) {
    const RiffChunk fact = findWaveChunk(file, "fact");
    std::uint32_t frames = 0;
    if (fact.offset == 0 || fact.size < static_cast<std::int32_t>(sizeof frames))
        return 0;
    const FileAccess access;
    const FileRecord record = access.openForReading(file);
    const bool read =
        access.setPosition(record, fact.offset, MoveMethod::fromBeginning) == fact.offset &&
        access.read(record, &frames, sizeof frames) == static_cast<std::int32_t>(sizeof frames);
    return read ? frames : 0;
}

} // namespace

std::optional<std::int64_t> countFrames(const std::wstring& file, cSoundSTRM& source) {
    const std::vector<std::wstring> extensions = source.Extensions();
    const WAVEFORMATEX* const format = source.WFXPointer();
    if (std::find(extensions.begin(), extensions.end(), L"wav") == extensions.end() || !format ||
        format->nBlockAlign == 0)
        return std::nullopt;
    const std::int64_t inBlock = framesInBlock(*format);
    if (inBlock == 0)
        return std::nullopt;
    const RiffChunk data = findWaveChunk(file, "data");
    if (data.offset == 0 || data.size < 0)
        return std::nullopt;
    // A file that was cut off holds less than its header says.
    std::int64_t bytes = data.size;
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (::GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &attributes)) {
        const std::int64_t size =
            std::int64_t{attributes.nFileSizeHigh} << 32 | std::int64_t{attributes.nFileSizeLow};
        bytes = std::clamp<std::int64_t>(size - data.offset, 0, bytes);
    }
    const std::int64_t inData = bytes / format->nBlockAlign * inBlock;
    if (inBlock == 1)
        return inData;
    // The last block may be filled up with what is no sound.
    const std::int64_t counted = countedByWriter(file);
    return counted > 0 && counted <= inData ? counted : inData;
}

} // namespace corvina
