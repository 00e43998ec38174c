// The formats of files whose sound is compressed: FLAC, Ogg, APE, MP4, Windows Media and MPEG
// audio.

#include "sources/FileHead.h"
#include "sources/FormatOfFile.h"
#include "sources/Mp4Boxes.h"

#include <string_view>

namespace corvina {
namespace {

using namespace std::string_view_literals;

// streamInfo: the place of that block's content.
std::uint32_t flacBits(const FilePiece& piece, std::size_t streamInfo) {
    return ((piece.big(streamInfo + 12, 2) >> 4) & 31) + 1;
}

std::wstring flac(const FilePiece& start) {
    return withBits(L"FLAC", flacBits(start, 8));
}

std::wstring ogg(const FilePiece& start) {
    const std::size_t packet = std::size_t{27} + start.byte(26);
    if (start.hasAt(packet, "\x01vorbis"))
        return L"Ogg Vorbis";
    if (start.hasAt(packet, "OpusHead"))
        return L"Ogg Opus";
    if (start.hasAt(packet, "\x7F"
                            "FLAC"))
        return withBits(L"Ogg FLAC", flacBits(start, packet + 17));
    if (start.hasAt(packet, "Speex   "))
        return L"Ogg Speex";
    return L"Ogg";
}

std::wstring ape(const FilePiece& start) {
    constexpr std::uint32_t firstWithDescriptor = 3980;
    constexpr std::uint32_t has8Bits = 1, has24Bits = 8; // else 16
    constexpr const wchar_t* kind = L"Monkey's Audio";
    if (start.little(4, 2) >= firstWithDescriptor)
        return withBits(kind, start.little(start.little(8, 4) + std::size_t{16}, 2));
    const std::uint32_t flags = start.little(8, 2);
    if ((flags & has8Bits) != 0)
        return withBits(kind, 8);
    return withBits(kind, (flags & has24Bits) != 0 ? 24 : 16);
}

// What an "esds" box says an "mp4a" track holds.
const wchar_t* mp4Object(const FilePiece& entry) {
    constexpr std::uint8_t decoderConfiguration = 4;
    for (std::size_t at = entry.find("esds"); at + 1 < entry.size(); ++at) {
        if (entry.byte(at) != decoderConfiguration)
            continue;
        std::size_t next = at + 1;
        while (entry.byte(next) == 0x80) // a length of several bytes
            ++next;
        switch (entry.byte(next + 1)) {
        case 0x40:
        case 0x66:
        case 0x67:
        case 0x68:
            return L"AAC";
        case 0x69:
        case 0x6B:
            return L"MP4, MP3";
        default:
            break;
        }
    }
    return L"MP4";
}

std::wstring mp4(const std::wstring& path, const FileApi& files) {
    constexpr std::uint64_t countOfEntries = 8;
    constexpr std::size_t codec = 4;
    constexpr std::size_t bits = 26;
    const Mp4Boxes file(path, files);
    std::wstring words;
    file.forEach(file.child(file.whole(), "moov"), 0, [&](const Mp4Boxes::Box& track) {
        if (!words.empty() || !track.is("trak"))
            return;
        Mp4Boxes::Box box = track;
        for (const char* const name : {"mdia", "minf", "stbl", "stsd"})
            box = file.child(box, name);
        const std::vector<std::uint8_t> bytes = file.bytes(box);
        if (bytes.size() <= countOfEntries)
            return;
        const FilePiece entry(std::string(bytes.begin() + countOfEntries, bytes.end()));
        if (entry.hasAt(codec, "alac"))
            words = withBits(L"Apple Lossless", entry.big(bits, 2));
        else if (entry.hasAt(codec, "mp4a"))
            words = mp4Object(entry);
        else if (entry.hasAt(codec, "fLaC"))
            words = withBits(L"FLAC", entry.big(bits, 2));
        else if (entry.hasAt(codec, "Opus"))
            words = L"Opus";
        else if (entry.hasAt(codec, ".mp3"))
            words = L"MP4, MP3";
    });
    return words.empty() ? L"MP4" : words;
}

// By the tag of the first stream of sound.
std::wstring windowsMedia(const FileHead& head) {
    constexpr auto streamProperties =
        "\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65"sv;
    constexpr auto sound = "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv;
    constexpr int mostObjects = 1000;
    std::uint64_t at = 30;
    for (int object = 0; object < mostObjects; ++object) {
        const FilePiece piece = head.piece(at, 80);
        const std::uint32_t size = piece.little(16, 4);
        if (piece.size() < 24 || size < 24)
            break;
        if (piece.hasAt(0, streamProperties) && piece.hasAt(24, sound))
            switch (piece.little(78, 2)) {
            case 0x000A:
                return L"Windows Media Voice";
            case 0x0055:
                return L"Windows Media, MP3";
            case 0x0162:
                return L"Windows Media Audio Professional";
            case 0x0163:
                return L"Windows Media Audio Lossless";
            default:
                return L"Windows Media Audio";
            }
        at += size;
    }
    return L"Windows Media";
}

// A header of a frame of MPEG audio, or of one of AAC.
std::wstring mpegFrame(const FilePiece& piece, std::size_t at) {
    constexpr const wchar_t* layers[] = {L"AAC", L"MP3", L"MP2", L"MP1"};
    const std::uint32_t header = piece.big(at, 4);
    const std::uint32_t version = header >> 19 & 3, layer = header >> 17 & 3;
    if (header >> 21 != 0x7FF || version == 1)
        return {};
    if (layer == 0) // only with 12 bits of mark
        return header >> 20 == 0xFFF && (header >> 10 & 15) < 13 ? layers[0] : L"";
    const bool possible = (header >> 12 & 15) != 15 && (header >> 10 & 3) != 3;
    return possible ? layers[layer] : L"";
}

// From the first frame in sight; what stands before it is left out.
std::wstring mpeg(const FileHead& head, std::uint64_t at) {
    const FilePiece piece = head.piece(at, 4096);
    for (std::size_t place = 0; place + 4 <= piece.size(); ++place)
        if (piece.byte(place) == 0xFF)
            if (std::wstring words = mpegFrame(piece, place); !words.empty())
                return words;
    return {};
}

// Behind the tags of that kind with which a file begins.
std::uint64_t behindTags(const FileHead& head) {
    constexpr int mostTags = 16;
    std::uint64_t at = 0;
    for (int tag = 0; tag < mostTags; ++tag) {
        const FilePiece start = head.piece(at, 10);
        if (!start.hasAt(0, "ID3"))
            break;
        std::uint64_t size = 0;
        for (std::size_t byte = 6; byte < 10; ++byte)
            size = size << 7 | (start.byte(byte) & 0x7F);
        at += 10 + size + ((start.byte(5) & 0x10) != 0 ? 10 : 0);
    }
    return at;
}

} // namespace

std::wstring formatOfCompressedFile(const FileHead& head, const std::wstring& path,
                                    const FileApi& files) {
    const std::uint64_t begin = behindTags(head);
    const FilePiece start = head.piece(begin, 512);
    if (start.hasAt(0, "fLaC"))
        return flac(start);
    if (start.hasAt(0, "OggS"))
        return ogg(start);
    if (start.hasAt(0, "MAC "))
        return ape(start);
    if (start.hasAt(4, "ftyp"))
        return mp4(path, files);
    if (start.hasAt(0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"))
        return windowsMedia(head);
    std::wstring words = begin > 0 ? mpeg(head, begin) : mpegFrame(start, 0);
    // MPEG audio with a tag that says more than there is.
    return words.empty() && begin > 0 ? L"MP3" : words;
}

} // namespace corvina
