#include "player/WaveLength.h"

#include "player/PlayedFormat.h"
#include "runtime/RuntimeError.h"
#include "stream/FileAccess.h"
#include "stream/RiffChunk.h"
#include "stream/SoundBlocks.h"
#include "stream/cSoundSTRM.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvina {
namespace {

// Samples that are not compressed in blocks count as blocks of one frame. 0 if nothing is known.
std::int64_t framesInWaveBlock(const WAVEFORMATEX& format) {
    switch (format.wFormatTag) {
    case WAVE_FORMAT_PCM:
    case WAVE_FORMAT_ALAW:
    case WAVE_FORMAT_MULAW:
        return 1;
    default:
        return framesInBlock(format);
    }
}

// The format of an opened WAV file; null if another source has opened it, or if it has no blocks.
const WAVEFORMATEX* waveFormat(cSoundSTRM& source) {
    const std::vector<std::wstring> extensions = source.Extensions();
    const auto serves = [&](const wchar_t* extension) {
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    const WAVEFORMATEX* const format = source.WFXPointer();
    const bool isWave = (serves(L"wav") || serves(L"wave")) && format && format->nBlockAlign != 0;
    return isWave ? format : nullptr;
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

std::optional<std::int32_t> misstatedRate(cSoundSTRM& source) {
    const WAVEFORMATEX* const format = waveFormat(source);
    if (!format || framesInWaveBlock(*format) != 1)
        return std::nullopt;
    const DWORD stated = format->nAvgBytesPerSec;
    const bool usable = stated > 0 && stated <= std::numeric_limits<std::int32_t>::max();
    if (!usable || stated == format->nSamplesPerSec * format->nBlockAlign)
        return std::nullopt;
    return static_cast<std::int32_t>(stated);
}

std::optional<std::int64_t> countFrames(const std::wstring& file, cSoundSTRM& source) {
    const WAVEFORMATEX* const format = waveFormat(source);
    if (!format)
        return std::nullopt;
    const std::int64_t inBlock = framesInWaveBlock(*format);
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

std::int32_t durationMs(const std::optional<std::int64_t>& frames, cSoundSTRM& source) {
    const PlayedFormat format{.sampleRate = source.Info().SampleRate()};
    if (!frames || format.sampleRate <= 0)
        return statedDurationMs(source);
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(format.millisecondsOf(*frames), most));
}

std::int32_t statedDurationMs(cSoundSTRM& source) {
    try {
        return source.Info().Duration();
    } catch (const RuntimeError&) {
        return 0;
    }
}

} // namespace corvina
