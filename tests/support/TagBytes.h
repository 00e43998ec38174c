#pragma once

// Files with tags and covers, as bytes.

#include "support/FileBytes.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>

namespace corvina::test {

[[nodiscard]] inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts)
        result.insert(result.end(), part.begin(), part.end());
    return result;
}

[[nodiscard]] inline Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

[[nodiscard]] inline Bytes bigNumber(std::uint64_t value, int bytes = 4) {
    Bytes result;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        result.push_back(static_cast<std::uint8_t>(value >> shift));
    return result;
}

[[nodiscard]] inline Bytes littleNumber(std::uint64_t value, int bytes = 4) {
    Bytes result = bigNumber(value, bytes);
    std::reverse(result.begin(), result.end());
    return result;
}

// The text in UTF-16, with its terminator.
[[nodiscard]] inline Bytes wideText(std::wstring_view text) {
    Bytes result;
    for (const wchar_t character : std::wstring(text) + L'\0')
        for (const std::uint8_t byte : littleNumber(character, 2))
            result.push_back(byte);
    return result;
}

// ID3v2.3, with a size other than the content's where one is given

[[nodiscard]] inline Bytes id3Frame(std::string_view id, const Bytes& content,
                                    std::uint32_t size = 0) {
    return joined({bytesOf(id), bigNumber(size ? size : content.size()), Bytes(2), content});
}

[[nodiscard]] inline Bytes id3Text(std::string_view id, std::wstring_view text) {
    return id3Frame(id, joined({Bytes{1, 0xFF, 0xFE}, wideText(text)}));
}

// kind: 3 is the front cover.
[[nodiscard]] inline Bytes id3Picture(std::uint8_t kind, const Bytes& picture,
                                      std::uint32_t size = 0) {
    return id3Frame("APIC", joined({Bytes{0}, bytesOf("image/png"), Bytes{0, kind, 0}, picture}),
                    size);
}

[[nodiscard]] inline Bytes id3Tag(const Bytes& frames, std::uint32_t size = 0) {
    const std::uint32_t whole = size ? size : static_cast<std::uint32_t>(frames.size());
    Bytes sizeBytes;
    for (int shift = 21; shift >= 0; shift -= 7)
        sizeBytes.push_back((whole >> shift) & 0x7F);
    return joined({bytesOf("ID3"), Bytes{3, 0, 0}, sizeBytes, frames});
}

// Frames of silence, MPEG layer 3 of 32 kbit/s.
[[nodiscard]] inline Bytes mpegFrames(int count = 4) {
    Bytes frame(104);
    frame[0] = 0xFF;
    frame[1] = 0xFB;
    frame[2] = 0x10;
    frame[3] = 0xC4;
    Bytes result;
    for (int index = 0; index < count; ++index)
        result.insert(result.end(), frame.begin(), frame.end());
    return result;
}

// As FLAC and Ogg hold it.
[[nodiscard]] inline Bytes flacPicture(std::uint32_t kind, const Bytes& picture) {
    return joined({bigNumber(kind), bigNumber(9), bytesOf("image/png"), bigNumber(0), bigNumber(1),
                   bigNumber(1), bigNumber(24), bigNumber(0), bigNumber(picture.size()), picture});
}

// A file of the public encoder with one more block behind the first.
[[nodiscard]] inline Bytes flacWithPicture(const Bytes& flac, const Bytes& picture) {
    constexpr std::ptrdiff_t behindFirst = 42;
    const Bytes content = flacPicture(3, picture);
    return joined({Bytes(flac.begin(), flac.begin() + behindFirst), Bytes{6},
                   bigNumber(content.size(), 3), content,
                   Bytes(flac.begin() + behindFirst, flac.end())});
}

[[nodiscard]] inline Bytes mp4Box(std::string_view name, const Bytes& content,
                                  std::uint32_t size = 0) {
    return joined({bigNumber(size ? size : content.size() + 8), bytesOf(name), content});
}

// kind: 1 a text, 14 a PNG picture.
[[nodiscard]] inline Bytes mp4Item(std::string_view name, std::uint32_t kind, const Bytes& value,
                                   std::uint32_t size = 0) {
    return mp4Box(name, mp4Box("data", joined({bigNumber(kind), Bytes(4), value}), size));
}

[[nodiscard]] inline Bytes mp4With(const Bytes& items) {
    const Bytes meta = joined({Bytes(4), mp4Box("hdlr", Bytes(25)), mp4Box("ilst", items)});
    return joined({mp4Box("ftyp", bytesOf("M4A \0\0\0\0")),
                   mp4Box("moov", mp4Box("udta", mp4Box("meta", meta))),
                   mp4Box("mdat", Bytes(64))});
}

[[nodiscard]] inline Bytes oggPage(std::uint32_t number, const Bytes& packet) {
    Bytes segments(packet.size() / 255, 255);
    segments.push_back(static_cast<std::uint8_t>(packet.size() % 255));
    return joined({bytesOf("OggS"), Bytes{0, static_cast<std::uint8_t>(number == 0 ? 2 : 0)},
                   Bytes(8), littleNumber(1), littleNumber(number), Bytes(4),
                   Bytes{static_cast<std::uint8_t>(segments.size())}, segments, packet});
}

[[nodiscard]] inline Bytes base64(const Bytes& bytes) {
    constexpr std::string_view letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    Bytes result;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t three = 0;
        for (std::size_t index = at; index < at + 3; ++index)
            three = three << 8 | (index < bytes.size() ? bytes[index] : 0u);
        for (std::size_t letter = 0; letter < 4; ++letter)
            result.push_back(
                at + letter > bytes.size()
                    ? std::uint8_t{'='}
                    : static_cast<std::uint8_t>(letters[three >> (18 - 6 * letter) & 63]));
    }
    return result;
}

[[nodiscard]] inline Bytes opusWith(std::initializer_list<Bytes> comments) {
    Bytes list;
    for (const Bytes& comment : comments)
        list = joined({list, littleNumber(comment.size()), comment});
    return joined(
        {oggPage(0, joined({bytesOf("OpusHead"), Bytes{1, 1, 0, 0, 0x80, 0xBB, 0, 0, 0, 0, 0}})),
         oggPage(1, joined({bytesOf("OpusTags"), littleNumber(4), bytesOf("test"),
                            littleNumber(comments.size()), list})),
         oggPage(2, Bytes(20))});
}

// A file of the public encoder with one more object in its header.
[[nodiscard]] inline Bytes asfWithPicture(Bytes asf, const Bytes& picture) {
    constexpr std::ptrdiff_t firstObject = 30;
    const Bytes value = joined(
        {Bytes{3}, littleNumber(picture.size()), wideText(L"image/png"), wideText(L""), picture});
    const Bytes name = wideText(L"WM/Picture");
    const Bytes attribute = joined({littleNumber(1, 2), littleNumber(name.size(), 2), name,
                                    littleNumber(1, 2), littleNumber(value.size(), 2), value});
    const Bytes object = joined({Bytes{0x40, 0xA4, 0xD0, 0xD2, 0x07, 0xE3, 0xD2, 0x11, 0x97, 0xF0,
                                       0x00, 0xA0, 0xC9, 0x5E, 0xA8, 0x50},
                                 littleNumber(24 + attribute.size(), 8), attribute});
    std::uint64_t size = object.size();
    for (std::size_t byte = 0; byte < 8; ++byte)
        size += std::uint64_t{asf[16 + byte]} << 8 * byte;
    const Bytes sizeBytes = littleNumber(size, 8);
    std::copy(sizeBytes.begin(), sizeBytes.end(), asf.begin() + 16);
    ++asf[24];
    asf.insert(asf.begin() + firstObject, object.begin(), object.end());
    return asf;
}

// binary: a value that is no text.
[[nodiscard]] inline Bytes apeItem(std::string_view key, const Bytes& value, bool binary = false) {
    return joined(
        {littleNumber(value.size()), littleNumber(binary ? 2 : 0), bytesOf(key), Bytes{0}, value});
}

[[nodiscard]] inline Bytes apeTag(std::initializer_list<Bytes> items) {
    Bytes all;
    for (const Bytes& item : items)
        all = joined({all, item});
    return joined({all, bytesOf("APETAGEX"), littleNumber(2000), littleNumber(all.size() + 32),
                   littleNumber(items.size()), Bytes(12)});
}

} // namespace corvina::test
