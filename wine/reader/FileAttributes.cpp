#include "FileAttributes.h"

#include <asffile.h>
#include <id3v2framefactory.h>
#include <mpegfile.h>
#include <taglib.h>
#include <tfilestream.h>
#include <tpropertymap.h>

namespace corvina::wine {
namespace {

using Attributes = std::vector<FileAttribute>;

constexpr bool readOnly = true;

void addText(Attributes& attributes, const wchar_t* name, const TagLib::String& text) {
    if (!text.isEmpty())
        attributes.push_back(textAttribute(name, text.toWString()));
}

void addBitrate(Attributes& attributes, const TagLib::MPEG::Properties* properties) {
    constexpr DWORD bitsPerKilobit = 1000;
    if (properties && properties->bitrate() > 0)
        attributes.push_back(
            numberAttribute(L"Bitrate", WMT_TYPE_DWORD,
                            static_cast<DWORD>(properties->bitrate()) * bitsPerKilobit));
}

void addCommonTags(Attributes& attributes, const TagLib::Tag& tag) {
    addText(attributes, L"Title", tag.title());
    addText(attributes, L"Author", tag.artist());
    addText(attributes, L"WM/AlbumTitle", tag.album());
    addText(attributes, L"WM/Genre", tag.genre());
    addText(attributes, L"Description", tag.comment());
}

void addMp3(Attributes& attributes, TagLib::MPEG::File& file) {
    addBitrate(attributes, file.audioProperties());
    const TagLib::Tag& tag = *file.tag();
    addCommonTags(attributes, tag);
    addText(attributes, L"WM/TrackNumber", file.properties()["TRACKNUMBER"].toString());
    if (tag.year() > 0)
        addText(attributes, L"WM/Year", TagLib::String::number(static_cast<int>(tag.year())));
}

// As it is stored: a number stays a number.
void addStored(Attributes& attributes, const wchar_t* name, const TagLib::ASF::Tag& tag) {
    for (const TagLib::ASF::Attribute& stored : tag.attribute(name)) {
        switch (stored.type()) {
        case TagLib::ASF::Attribute::DWordType:
            attributes.push_back(
                numberAttribute(name, WMT_TYPE_DWORD, static_cast<DWORD>(stored.toUInt())));
            break;
        case TagLib::ASF::Attribute::WordType:
            attributes.push_back(
                numberAttribute(name, WMT_TYPE_WORD, static_cast<WORD>(stored.toUShort())));
            break;
        default:
            addText(attributes, name, stored.toString());
        }
    }
}

void addWindowsMedia(Attributes& attributes, TagLib::ASF::File& file) {
    addCommonTags(attributes, *file.tag());
    // The comment has a place of its own in the header, but some programs write it among the
    // others.
    if (file.tag()->comment().isEmpty())
        addStored(attributes, L"Description", *file.tag());
    addStored(attributes, L"WM/TrackNumber", *file.tag());
    addStored(attributes, L"WM/Year", *file.tag());
}

} // namespace

FileAttribute textAttribute(const wchar_t* name, const std::wstring& text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.c_str());
    return {name, WMT_TYPE_STRING, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)}};
}

bool isMpegAudio(const std::wstring& path) {
    TagLib::FileStream stream(path.c_str(), readOnly);
    return stream.isOpen() && isMpegAudio(stream);
}

bool isMpegAudio(TagLib::IOStream& stream) {
    return TagLib::MPEG::File::isSupported(&stream);
}

std::vector<FileAttribute> readFileAttributes(const std::wstring& path) {
    TagLib::FileStream stream(path.c_str(), readOnly);
    return stream.isOpen() ? readFileAttributes(stream) : Attributes{};
}

std::vector<FileAttribute> readFileAttributes(TagLib::IOStream& stream) {
    Attributes attributes;
    if (TagLib::ASF::File::isSupported(&stream)) {
        TagLib::ASF::File file(&stream);
        if (file.isValid())
            addWindowsMedia(attributes, file);
    } else {
#if TAGLIB_MAJOR_VERSION >= 2
        TagLib::MPEG::File file(&stream);
#else
        TagLib::MPEG::File file(&stream, TagLib::ID3v2::FrameFactory::instance());
#endif
        if (file.isValid())
            addMp3(attributes, file);
    }
    return attributes;
}

} // namespace corvina::wine
