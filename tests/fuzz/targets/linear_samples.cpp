// Linear samples as a format record describes them: what the record says, and what comes of any
// bytes by it. The first 40 bytes are the record, the others the samples.

#include "fuzz/FuzzTarget.h"
#include "stream/LinearConversion.h"

#include <cstring>

namespace corvina::fuzz {
namespace {

void convertAll(const LinearFormat& format, bool mixed, std::span<const std::uint8_t> samples) {
    LinearConversion conversion(format, mixed);
    const auto block = static_cast<std::uint32_t>(format.blockBytes());
    const auto outputBlock = static_cast<std::uint32_t>(conversion.outputChannels()) * 2;
    Bytes source(samples.begin(), samples.end());
    Bytes output(samples.size() / block * outputBlock);
    const auto wanted = conversion.sourceBytes(static_cast<std::uint32_t>(output.size()));
    require(wanted && *wanted <= source.size(), "the output holds no more than there is");
    for (const std::size_t less : {std::size_t{0}, source.size() / 2}) {
        const auto done =
            conversion.convert(std::span(source).first(source.size() - less), output, true, true);
        require(done && done->used <= source.size() - less && done->used % block == 0,
                "whole blocks are used");
        require(done->produced == done->used / block * outputBlock,
                "each block in gives a block out");
    }
}

void useSamples(std::span<const std::uint8_t> input) {
    WAVEFORMATEXTENSIBLE record{};
    const std::size_t head = std::min(input.size(), sizeof record);
    std::memcpy(&record, input.data(), head);
    record.Format.cbSize =
        std::min<WORD>(record.Format.cbSize, sizeof record - sizeof record.Format);
    const std::optional<LinearFormat> format = linearFormat(record.Format);
    if (!format)
        return;
    require(format->channels >= 1 && format->sampleBytes >= 1 && format->sampleBytes <= 8 &&
                format->validBits >= 1 && format->validBits <= 8 * format->sampleBytes,
            "the format is one that can be converted");
    for (const bool mixed : {false, true})
        convertAll(*format, mixed, input.subspan(head));
}

Bytes described(WORD channels, WORD bits, bool extensible, DWORD mask, const GUID& kind) {
    WAVEFORMATEXTENSIBLE record{};
    record.Format = {.wFormatTag = WAVE_FORMAT_PCM,
                     .nChannels = channels,
                     .nSamplesPerSec = 44100,
                     .nAvgBytesPerSec = 44100u * channels * bits / 8,
                     .nBlockAlign = static_cast<WORD>(channels * bits / 8),
                     .wBitsPerSample = bits,
                     .cbSize = 0};
    if (extensible) {
        record.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
        record.Format.cbSize = sizeof record - sizeof record.Format;
        record.dwChannelMask = mask;
        record.SubFormat = kind;
    }
    Bytes bytes(sizeof record + std::size_t{9} * record.Format.nBlockAlign, 0x3E);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

std::vector<Bytes> sampleSeeds() {
    constexpr GUID whole = {1, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    GUID floating = whole;
    floating.Data1 = WAVE_FORMAT_IEEE_FLOAT;
    return {described(2, 8, false, 0, whole),    described(2, 24, false, 0, whole),
            described(6, 32, true, 0x3F, whole), described(2, 32, true, 3, floating),
            described(8, 64, true, 0, floating), described(1, 16, true, 4, whole)};
}

const FuzzTarget samples{"linear_samples", &useSamples, &sampleSeeds, 512};

} // namespace
} // namespace corvina::fuzz
