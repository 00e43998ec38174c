// The formats of files that hold samples: RIFF, Wave64, AIFF, AU, VOC and CAF.

#include "sources/FileHead.h"
#include "sources/FormatOfFile.h"
#include "stream/WaveChunks.h"

#include <mmreg.h>
#include <optional>
#include <windows.h>

namespace corvina {
namespace {

std::wstring named(const wchar_t* kind, const wchar_t* codec) {
    return std::wstring(kind) + L", " + codec;
}

std::wstring floats(const wchar_t* kind, std::uint32_t bits) {
    const std::wstring words = withBits(kind, bits);
    return words == kind ? named(kind, L"floating point") : words + L" floating point";
}

// format: a WAVEFORMATEX record.
std::wstring waveFormat(const wchar_t* kind, const FilePiece& format) {
    constexpr std::size_t bitsAt = 14;
    constexpr std::size_t subFormatAt = 24;
    std::uint32_t tag = format.little(0, 2);
    if (tag == WAVE_FORMAT_EXTENSIBLE)
        tag = format.little(subFormatAt, 2);
    switch (tag) {
    case WAVE_FORMAT_PCM:
        return withBits(kind, format.little(bitsAt, 2));
    case WAVE_FORMAT_IEEE_FLOAT:
        return floats(kind, format.little(bitsAt, 2));
    case WAVE_FORMAT_ADPCM:
        return named(kind, L"MS-ADPCM");
    case WAVE_FORMAT_IMA_ADPCM:
        return named(kind, L"IMA-ADPCM");
    case WAVE_FORMAT_ALAW:
        return named(kind, L"A-law");
    case WAVE_FORMAT_MULAW:
        return named(kind, L"mu-law");
    case WAVE_FORMAT_GSM610:
        return named(kind, L"GSM 6.10");
    case WAVE_FORMAT_MPEG:
        return named(kind, L"MP2");
    case WAVE_FORMAT_MPEGLAYER3:
        return named(kind, L"MP3");
    default:
        return kind;
    }
}

std::wstring wave(const FileHead& head, const FilePiece& start) {
    const wchar_t* kind = L"WAV";
    if (start.hasAt(0, "RF64") || start.hasAt(0, "BW64"))
        kind = start.hasAt(0, "RF64") ? L"RF64" : L"BW64";
    const std::optional<WaveChunks> chunks = readWaveChunks(head.access(), head.file());
    return chunks ? waveFormat(kind, head.piece(static_cast<std::uint32_t>(chunks->format.offset),
                                                sizeof(WAVEFORMATEXTENSIBLE)))
                  : kind;
}

std::wstring wave64(const FilePiece& start) {
    constexpr std::size_t firstChunk = 40;
    constexpr std::size_t chunkHeader = 24;
    if (!start.hasAt(firstChunk, "fmt "))
        return L"Wave64";
    std::string format;
    for (std::size_t at = firstChunk + chunkHeader; at < start.size(); ++at)
        format += static_cast<char>(start.byte(at));
    return waveFormat(L"Wave64", FilePiece(std::move(format)));
}

// The names under which Apple's formats know their codecs.
std::wstring appleFormat(const wchar_t* kind, const FilePiece& at, std::size_t codec,
                         std::uint32_t bits) {
    static constexpr struct {
        const char* code;
        const wchar_t* name;
    } codecs[] = {{"ulaw", L"mu-law"},   {"ULAW", L"mu-law"},    {"alaw", L"A-law"},
                  {"ALAW", L"A-law"},    {"ima4", L"IMA-ADPCM"}, {"GSM ", L"GSM 6.10"},
                  {"agsm", L"GSM 6.10"}, {"aac ", L"AAC"},       {"alac", L"Apple Lossless"},
                  {".mp3", L"MP3"}};
    for (const auto& [code, name] : codecs)
        if (at.hasAt(codec, code))
            return named(kind, name);
    if (at.hasAt(codec, "fl32") || at.hasAt(codec, "FL32"))
        return floats(kind, 32);
    if (at.hasAt(codec, "fl64") || at.hasAt(codec, "FL64"))
        return floats(kind, 64);
    return withBits(kind, bits);
}

std::wstring aiff(const FileHead& head, const FilePiece& start) {
    constexpr int mostChunks = 1000;
    const bool compressed = start.hasAt(8, "AIFC");
    const wchar_t* const kind = compressed ? L"AIFF-C" : L"AIFF";
    std::uint64_t at = 12;
    for (int chunk = 0; chunk < mostChunks; ++chunk) {
        const FilePiece piece = head.piece(at, 32);
        if (piece.size() < 8)
            break;
        if (piece.hasAt(0, "COMM")) {
            const std::uint32_t bits = piece.big(14, 2);
            return compressed ? appleFormat(kind, piece, 26, bits) : withBits(kind, bits);
        }
        const std::uint64_t size = piece.big(4, 4);
        at += 8 + size + size % 2;
    }
    return kind;
}

std::wstring au(const FilePiece& start) {
    switch (start.hasAt(0, ".snd") ? start.big(12, 4) : start.little(12, 4)) {
    case 1:
        return named(L"AU", L"mu-law");
    case 2:
        return withBits(L"AU", 8);
    case 3:
        return withBits(L"AU", 16);
    case 4:
        return withBits(L"AU", 24);
    case 5:
        return withBits(L"AU", 32);
    case 6:
        return floats(L"AU", 32);
    case 7:
        return floats(L"AU", 64);
    case 23:
    case 25:
    case 26:
        return named(L"AU", L"G.72x ADPCM");
    case 27:
        return named(L"AU", L"A-law");
    default:
        return L"AU";
    }
}

std::wstring voc(const FileHead& head, const FilePiece& start) {
    constexpr std::uint32_t soundBlock = 1;
    constexpr std::uint32_t newSoundBlock = 9;
    const FilePiece block = head.piece(start.little(20, 2), 16);
    const std::uint8_t type = block.byte(0);
    if (type != soundBlock && type != newSoundBlock)
        return L"VOC";
    switch (type == soundBlock ? block.byte(5) : block.little(10, 2)) {
    case 0:
        return withBits(L"VOC", 8);
    case 4:
        return withBits(L"VOC", 16);
    case 6:
        return named(L"VOC", L"A-law");
    case 7:
        return named(L"VOC", L"mu-law");
    default:
        return named(L"VOC", L"ADPCM");
    }
}

std::wstring caf(const FilePiece& start) {
    constexpr std::size_t codec = 28;
    constexpr std::size_t flags = 32;
    constexpr std::size_t bits = 48;
    constexpr std::uint32_t isFloat = 1;
    if (!start.hasAt(8, "desc"))
        return L"CAF";
    if (start.hasAt(codec, "lpcm") && (start.big(flags, 4) & isFloat) != 0)
        return floats(L"CAF", start.big(bits, 4));
    return appleFormat(L"CAF", start, codec, start.big(bits, 4));
}

} // namespace

std::wstring formatOfSampleFile(const FileHead& head) {
    const FilePiece start = head.piece(0, 128);
    if (start.hasAt(8, "WAVE") &&
        (start.hasAt(0, "RIFF") || start.hasAt(0, "RF64") || start.hasAt(0, "BW64")))
        return wave(head, start);
    if (start.hasAt(0, "riff\x2E\x91\xCF\x11"))
        return wave64(start);
    if (start.hasAt(0, "FORM") && (start.hasAt(8, "AIFF") || start.hasAt(8, "AIFC")))
        return aiff(head, start);
    if (start.hasAt(0, ".snd") || start.hasAt(0, "dns."))
        return au(start);
    if (start.hasAt(0, "Creative Voice File\x1A"))
        return voc(head, start);
    if (start.hasAt(0, "caff"))
        return caf(start);
    return {};
}

} // namespace corvina
