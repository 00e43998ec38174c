#include "sources/MediaAttributes.h"

#include "com/ComPtr.h"
#include "runtime/Text.h"
#include "stream/StrmTags.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <objbase.h>
#include <string>
#include <vector>

namespace corvina {
namespace {

// The attributes of the file as such and of every stream.
constexpr WORD wholeFile = 0xFFFF;

// Longer values are pictures and private data, never one that is used here.
constexpr DWORD longestValue = 1 << 24;

struct Attribute {
    std::wstring name;
    WMT_ATTR_DATATYPE type = WMT_TYPE_BINARY;
    // The value with zeros behind it: as many bytes as any type has, whatever was stored.
    std::vector<std::uint8_t> value;

    template <typename Number>
    [[nodiscard]] Number number() const noexcept {
        Number result{};
        std::memcpy(&result, value.data(), sizeof result);
        return result;
    }
};

// The bytes that a value of the type has, whatever its stored length.
std::size_t sizeOfType(WMT_ATTR_DATATYPE type) noexcept {
    switch (type) {
    case WMT_TYPE_DWORD:
        return 4;
    case WMT_TYPE_BOOL:
    case WMT_TYPE_WORD:
        return 2;
    case WMT_TYPE_QWORD:
        return 8;
    case WMT_TYPE_GUID:
        return sizeof(GUID);
    default:
        return 0;
    }
}

// Copies as many bytes as the type has and the field takes.
template <typename Field>
void copyValue(const Attribute& attribute, Field& field) noexcept {
    std::memcpy(&field, attribute.value.data(), std::min(sizeOfType(attribute.type), sizeof field));
}

std::wstring textForm(const Attribute& attribute) {
    switch (attribute.type) {
    case WMT_TYPE_DWORD:
        return std::to_wstring(attribute.number<std::uint32_t>());
    case WMT_TYPE_STRING: {
        std::wstring text(attribute.value.size() / sizeof(wchar_t), L'\0');
        std::memcpy(text.data(), attribute.value.data(), text.size() * sizeof(wchar_t));
        return std::wstring(upToNul(text));
    }
    case WMT_TYPE_GUID: {
        std::array<wchar_t, 40> text{};
        ::StringFromGUID2(attribute.number<GUID>(), text.data(), static_cast<int>(text.size()));
        return text.data();
    }
    default:
        return {};
    }
}

// A small number becomes the character of that code, not its digits. Hosts know that they find a
// control character where a file stores a number, and the number itself in that character's code.
// Only texts and larger numbers come out as written; a text's first character is such a larger
// number.
std::wstring trackNumber(const Attribute& attribute) {
    constexpr std::uint32_t lastCharacter = 48;
    const auto number = attribute.number<std::uint32_t>();
    return number <= lastCharacter ? std::wstring(1, static_cast<wchar_t>(number))
                                   : textForm(attribute);
}

struct TagRule {
    const wchar_t* attribute;
    const wchar_t* tag;
    std::wstring (*value)(const Attribute&);
};

constexpr TagRule tagRules[] = {
    {L"Author", L"artist", textForm},       {L"WM/AlbumArtist", L"artist", textForm},
    {L"WM/AlbumTitle", L"album", textForm}, {L"WM/Genre", L"genre", textForm},
    {L"Title", L"title", textForm},         {L"WM/TrackNumber", L"tracknumber", trackNumber},
    {L"Description", L"comment", textForm}, {L"WM/Year", L"year", textForm},
};

void take(const Attribute& attribute, MediaAttributes& attributes, StrmTags& tags) {
    if (attribute.name == L"Duration")
        copyValue(attribute, attributes.duration);
    else if (attribute.name == L"Bitrate")
        copyValue(attribute, attributes.bitrate);
    else if (attribute.name == L"Seekable")
        copyValue(attribute, attributes.seekable);
    else
        for (const TagRule& rule : tagRules)
            if (attribute.name == rule.attribute)
                tags.AddTag(rule.tag, rule.value(attribute));
}

// The first call returns the lengths, the second fills buffers of these. Nothing but the file
// vouches for the lengths, so each buffer is longer and ends in zeros.
bool readAttribute(IWMHeaderInfo3& header, WORD index, Attribute& attribute) {
    WORD nameLength = 0;
    WORD language = 0;
    DWORD valueLength = 0;
    if (header.GetAttributeByIndexEx(wholeFile, index, nullptr, &nameLength, &attribute.type,
                                     &language, nullptr, &valueLength) != S_OK ||
        valueLength > longestValue)
        return false;

    attribute.name.assign(std::size_t{nameLength} + 1, L'\0');
    attribute.value.assign(valueLength + sizeof(GUID), 0);
    if (header.GetAttributeByIndexEx(wholeFile, index, attribute.name.data(), &nameLength,
                                     &attribute.type, &language, attribute.value.data(),
                                     &valueLength) != S_OK)
        return false;
    attribute.name.resize(upToNul(attribute.name).size());
    return true;
}

} // namespace

bool readMediaAttributes(IWMSyncReader& reader, MediaAttributes& attributes, StrmTags& tags) {
    tags.ClearTags();
    attributes = {};
    ComPtr<IWMHeaderInfo3> header;
    WORD count = 0;
    if (reader.QueryInterface(__uuidof(IWMHeaderInfo3), header.putVoid()) != S_OK || !header ||
        header->GetAttributeCountEx(wholeFile, &count) != S_OK)
        return false;
    Attribute attribute;
    for (WORD index = 0; index < count; ++index)
        if (readAttribute(*header.get(), index, attribute))
            take(attribute, attributes, tags);
    return true;
}

} // namespace corvina
