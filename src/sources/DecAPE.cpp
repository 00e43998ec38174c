#include "sources/DecAPE.h"

#include "platform/AnsiText.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "sources/ApeTag.h"
#include "stream/PcmFormat.h"

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

std::int32_t DecAPE::OpenSource(const std::wstring& Source) {
    if (!access_.exists(Source))
        return SourceResult::notOpen;
    if (decoder_ != 0)
        CloseSource();
    opened_ = false;
    // The handle is not tested: the library answers what it will for a handle of 0.
    std::int32_t error = 0;
    decoder_ = library_.create(toAnsi(Source).text.c_str(), error);
    readInformation();
    tags_.ClearTags();
    readApeTag(access_, Source, tags_);
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

std::int32_t DecAPE::Read(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesRead) {
    if (!opened_)
        return SourceResult::notOpen;
    // To nearest, but no more than the buffer holds: half a block more would be written behind it.
    const std::int32_t blockAlign = format_.nBlockAlign;
    const std::int32_t nearest = roundToInt32(divide(cBytes, blockAlign));
    const std::int32_t blocks = std::min(nearest, cBytes / blockAlign);
    std::int32_t retrieved = 0;
    library_.getData(decoder_, pBuffer, blocks, retrieved);
    cBytesRead = multiply32(retrieved, blockAlign);
    if (retrieved != 0)
        return SourceResult::done;
    ended_ = true;
    return SourceResult::endOfData;
}

std::int32_t DecAPE::SeekTo(std::int32_t Value, std::int32_t& Mode) {
    if (!opened_)
        return SourceResult::done;
    if (Mode == SeekMode::percent && (Value < 0 || Value > 100))
        return SourceResult::outOfRange;
    if (Mode == SeekMode::seconds && (Value < 0 || lengthMs_ / 1000.0 < Value))
        return SourceResult::outOfRange;
    library_.seek(decoder_, roundToInt32(targetBlock(Value, Mode)));
    ended_ = false;
    return SourceResult::done;
}

double DecAPE::targetBlock(std::int32_t value, std::int32_t mode) const {
    if (value == 0)
        return 0;
    const double hundredth = totalBlocks_ / 100.0;
    if (mode == SeekMode::percent)
        return hundredth * value;
    if (mode == SeekMode::seconds)
        return divide(value, lengthMs_ / 1000.0) * 100 * hundredth;
    return 0;
}

std::int32_t DecAPE::Bitrate() {
    return multiply32(averageKilobits_, 1000);
}

std::int32_t DecAPE::Position() {
    return opened_ ? library_.getInfo(decoder_, Field::positionMs) : 0;
}

} // namespace corvina
