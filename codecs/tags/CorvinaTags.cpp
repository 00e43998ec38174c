// The two functions of the library.

#include "Cover.h"
#include "LimitedFile.h"
#include "OpenTagFile.h"
#include "sources/TagInterface.h"

#include <algorithm>
#include <asftag.h>
#include <memory>
#include <string>
#include <tbytevector.h>
#include <tfile.h>
#include <tpropertymap.h>
#include <utility>
#include <vector>

namespace corvina::tags {
namespace {

constexpr std::size_t mostTags = 1000;
constexpr std::size_t longestText = 65536;

struct OwnedTags : TagsOfFile {
    std::vector<std::pair<std::wstring, std::wstring>> texts;
    std::vector<TagOfFile> list;
    TagLib::ByteVector cover;
};

// Up to the first character of code 0, as the texts are handed out.
std::wstring plainText(const TagLib::String& text) {
    const std::wstring whole = text.toWString();
    return whole.substr(0, std::min(whole.find(L'\0'), longestText));
}

// Of several values with one name all are given.
std::wstring joined(const TagLib::StringList& values) {
    std::wstring all;
    for (const TagLib::String& value : values) {
        const std::wstring text = plainText(value);
        if (text.empty())
            continue;
        if (!all.empty())
            all += L"; ";
        all += text;
        if (all.size() >= longestText)
            break;
    }
    return all.substr(0, longestText);
}

// The comment goes by several names: programs call it DESCRIPTION in Ogg and FLAC, and in a Windows
// Media file it has a place of its own in the header or stands among the other values.
TagLib::PropertyMap propertiesOf(TagLib::File& file) {
    TagLib::PropertyMap properties = file.properties();
    const TagLib::String comment = file.tag() ? file.tag()->comment() : TagLib::String();
    if (!properties.contains("COMMENT") && !comment.isEmpty())
        properties["COMMENT"].append(comment);
    const auto* const asf = dynamic_cast<TagLib::ASF::Tag*>(file.tag());
    if (asf && !properties.contains("COMMENT"))
        for (const TagLib::ASF::Attribute& value : asf->attribute("Description"))
            properties["COMMENT"].append(value.toString());
    return properties;
}

void collect(OwnedTags& tags, TagLib::File& file) {
    for (const auto& [name, values] : propertiesOf(file)) {
        std::wstring key = plainText(name.upper());
        std::wstring text = joined(values);
        if (!key.empty() && !text.empty() && tags.texts.size() < mostTags)
            tags.texts.emplace_back(std::move(key), std::move(text));
    }
    for (const auto& [name, text] : tags.texts)
        tags.list.push_back({name.c_str(), text.c_str()});
    tags.tags = tags.list.data();
    tags.tagCount = tags.list.size();
    tags.cover = coverOf(file);
    tags.picture = tags.cover.isEmpty() ? nullptr : std::as_const(tags.cover).data();
    tags.pictureBytes = tags.cover.size();
}

std::unique_ptr<OwnedTags> read(const wchar_t* path) {
    LimitedFile stream(path);
    if (!stream.isOpen())
        return nullptr;
    const std::unique_ptr<TagLib::File> file = openTagFile(stream);
    if (!file)
        return nullptr;
    auto tags = std::make_unique<OwnedTags>();
    collect(*tags, *file);
    return tags;
}

} // namespace
} // namespace corvina::tags

extern "C" {

__declspec(dllexport) const corvina::TagsOfFile* __cdecl CorvinaReadTags(const wchar_t* path) {
    try {
        return path ? corvina::tags::read(path).release() : nullptr;
    } catch (...) {
        return nullptr;
    }
}

__declspec(dllexport) void __cdecl CorvinaFreeTags(const corvina::TagsOfFile* tags) {
    delete static_cast<const corvina::tags::OwnedTags*>(tags);
}
}
