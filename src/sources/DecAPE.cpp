#include "sources/DecAPE.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "sources/ApeTag.h"
#include "stream/FileName.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <algorithm>

namespace corvina {
namespace {

// Numbers that the library gives its information.
namespace Field {
constexpr std::int32_t sampleRate = 1003;
constexpr std::int32_t bitsPerSample = 1004;
constexpr std::int32_t channels = 1006;
constexpr std::int32_t blockAlign = 1007;
constexpr std::int32_t totalBlocks = 1016;
constexpr std::int32_t lengthMs = 1017;
constexpr std::int32_t averageKilobits = 1018;
constexpr std::int32_t positionMs = 2001;
} // namespace Field

} // namespace

DecAPE::~DecAPE() {
    try {
        DecAPE::CloseSource();
    } catch (const RuntimeError&) {
        // The library lacks the function that frees its decoder.
    }
}

std::int32_t DecAPE::OpenSource(const std::wstring& source) {
    if (!access_.exists(source))
        return SourceResult::notOpen;
    if (decoder_ != 0)
        CloseSource();
    opened_ = false;
    // The handle is not tested: what the library returns for a handle of 0 is taken as it comes.
    std::int32_t error = 0;
    const FileName name = fileName(source);
    decoder_ = name.fitsAnsi ? library_.create(name.ansi.c_str(), error)
                             : library_.createWide(name.wide.c_str(), error);
    readInformation();
    tags_.ClearTags();
    readApeTag(access_, source, tags_);
    format_ = pcmFormat(static_cast<DWORD>(sampleRate_), static_cast<WORD>(channels_),
                        static_cast<WORD>(bitsPerSample_));
    ended_ = false;
    opened_ = true;
    return SourceResult::done;
}

void DecAPE::readInformation() {
    bitsPerSample_ = narrow16(library_.getInfo(decoder_, Field::bitsPerSample));
    // Asked with the others, and not used: blocks are counted by the record that the converter has.
    (void)library_.getInfo(decoder_, Field::blockAlign);
    sampleRate_ = library_.getInfo(decoder_, Field::sampleRate);
    channels_ = narrow16(library_.getInfo(decoder_, Field::channels));
    averageKilobits_ = library_.getInfo(decoder_, Field::averageKilobits);
    lengthMs_ = library_.getInfo(decoder_, Field::lengthMs);
    totalBlocks_ = library_.getInfo(decoder_, Field::totalBlocks);
}

std::int32_t DecAPE::CloseSource() {
    opened_ = false;
    if (decoder_ != 0) {
        library_.destroy(decoder_);
        decoder_ = 0;
    }
    return SourceResult::done;
}

std::int32_t DecAPE::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    if (!opened_)
        return SourceResult::notOpen;
    // To nearest, but no more than the buffer holds: half a block more would be written behind it.
    const std::int32_t blockAlign = format_.nBlockAlign;
    const std::int32_t nearest = roundToInt32(divide(bytes, blockAlign));
    const std::int32_t blocks = std::min(nearest, bytes / blockAlign);
    std::int32_t retrieved = 0;
    library_.getData(decoder_, buffer, blocks, retrieved);
    bytesRead = multiply32(retrieved, blockAlign);
    if (retrieved != 0)
        return SourceResult::done;
    ended_ = true;
    return SourceResult::endOfData;
}

std::int32_t DecAPE::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!opened_)
        return SourceResult::done;
    const double hundredth = totalBlocks_ / 100.0;
    const std::optional<double> block = seekTarget(
        *this, value, mode, [&] { return hundredth * value; },
        // The start needs no length: a file that the library refused has none.
        [&] { return value == 0 ? 0 : divide(value, lengthMs_ / 1000.0) * 100 * hundredth; });
    if (!block)
        return SourceResult::outOfRange;
    library_.seek(decoder_, roundToInt32(*block));
    ended_ = false;
    return SourceResult::done;
}

std::int32_t DecAPE::Bitrate() {
    return multiply32(averageKilobits_, 1000);
}

std::int32_t DecAPE::Position() {
    return opened_ ? library_.getInfo(decoder_, Field::positionMs) : 0;
}

} // namespace corvina
