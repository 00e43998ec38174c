#include "player/TagTexts.h"

#include "runtime/Text.h"
#include "stream/StrmTags.h"

#include <algorithm>

namespace corvina {
namespace {

// The name of the tag that holds the comment; empty if the kind of file is unknown.
std::wstring commentName(const std::wstring& fileName) {
    const std::size_t length = std::min<std::size_t>(fileName.size(), 3);
    const std::wstring kind =
        upperCase(std::wstring_view(fileName).substr(fileName.size() - length));
    if (kind == L"OGG")
        return L"description";
    if (kind == L"MP3" || kind == L"APE" || kind == L"WMA" || kind == L"ASF")
        return L"comment";
    return {};
}

} // namespace

void fillTagTexts(TagTexts& texts, const std::wstring& fileName, const StrmTags* tags) {
    texts = {};
    const std::wstring comment = commentName(fileName);
    if (comment.empty() || !tags)
        return;
    const struct {
        std::wstring_view name;
        std::wstring& text;
    } fields[] = {
        {L"artist", texts.artist}, {L"album", texts.album}, {L"title", texts.title},
        {L"year", texts.songYear}, {L"genre", texts.genre}, {L"tracknumber", texts.trackNumber},
        {comment, texts.comment},
    };
    for (const StrmTag& tag : *tags) {
        const std::wstring name = lowerCase(tag.TagName());
        for (const auto& field : fields)
            if (name == field.name)
                field.text = tag.TagValue();
    }
}

} // namespace corvina
