#include "stream/LinearFormat.h"

#include <cstring>

namespace corvina {
namespace {

// More speakers than a mask has names for.
constexpr std::int32_t mostChannels = 32;

// The extensible record's own fields. Nothing if it is too short for them.
std::optional<WAVEFORMATEXTENSIBLE> extension(const WAVEFORMATEX& record) {
    WAVEFORMATEXTENSIBLE whole{};
    if (record.cbSize < sizeof whole - sizeof record)
        return std::nullopt;
    std::memcpy(&whole, &record, sizeof whole);
    return whole;
}

// The identifiers of formats that also have a tag differ in their first field alone.
bool isTagged(const GUID& format) {
    constexpr GUID anyTag = {0, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    GUID rest = format;
    rest.Data1 = 0;
    return format.Data1 <= 0xFFFF && std::memcmp(&rest, &anyTag, sizeof rest) == 0;
}

bool isPossible(const LinearFormat& format) {
    const std::int32_t bits = format.sampleBytes * 8;
    if (format.rate <= 0 || format.validBits < 1 || format.validBits > bits)
        return false;
    return format.isFloat ? bits == 32 || bits == 64 : bits >= 8 && bits <= 32;
}

} // namespace

std::optional<LinearFormat> linearFormat(const WAVEFORMATEX& record) {
    LinearFormat format{.rate = static_cast<std::int32_t>(record.nSamplesPerSec),
                        .channels = record.nChannels,
                        .validBits = record.wBitsPerSample};
    std::uint32_t tag = record.wFormatTag;
    if (tag == WAVE_FORMAT_EXTENSIBLE) {
        const std::optional<WAVEFORMATEXTENSIBLE> whole = extension(record);
        if (!whole || !isTagged(whole->SubFormat))
            return std::nullopt;
        tag = whole->SubFormat.Data1;
        format.channelMask = whole->dwChannelMask;
        if (whole->Samples.wValidBitsPerSample != 0)
            format.validBits = whole->Samples.wValidBitsPerSample;
    }
    if (tag != WAVE_FORMAT_PCM && tag != WAVE_FORMAT_IEEE_FLOAT)
        return std::nullopt;
    format.isFloat = tag == WAVE_FORMAT_IEEE_FLOAT;
    if (format.channels < 1 || format.channels > mostChannels ||
        record.nBlockAlign % format.channels != 0)
        return std::nullopt;
    format.sampleBytes = record.nBlockAlign / format.channels;
    if (!isPossible(format))
        return std::nullopt;
    return format;
}

} // namespace corvina
