#include "sources/Mp4Tags.h"

#include "sources/Mp4Boxes.h"
#include "sources/Utf8Text.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace corvina {
namespace {

struct Rule {
    std::string_view box;
    const wchar_t* name;
};
constexpr Rule rules[] = {
    {"\xA9nam", L"title"},
    {"\xA9"
     "ART",
     L"artist"},
    {"\xA9"
     "alb",
     L"album"},
    {"\xA9"
     "day",
     L"year"},
    {"\xA9gen", L"genre"},
    {"\xA9"
     "cmt",
     L"comment"},
};

constexpr std::size_t dataHeader = 8; // the kind of the value and a locale

std::wstring valueOf(const Mp4Boxes& file, const Mp4Boxes::Box& item) {
    const std::vector<std::uint8_t> data = file.bytes(file.child(item, "data"));
    if (data.size() <= dataHeader)
        return {};
    // The number of the track is a number among others, all else is text.
    if (item.is("trkn"))
        return data.size() < dataHeader + 4
                   ? std::wstring()
                   : std::to_wstring(bigEndian(data.data() + dataHeader, 4));
    return fromUtf8(
        {reinterpret_cast<const char*>(data.data()) + dataHeader, data.size() - dataHeader});
}

} // namespace

void readMp4Tags(const std::wstring& path, StrmTags& tags, const FileApi& files) {
    constexpr std::uint64_t versionAndFlags = 4;
    const Mp4Boxes file(path, files);
    const Mp4Boxes::Box meta =
        file.child(file.child(file.child(file.whole(), "moov"), "udta"), "meta");
    file.forEach(file.child(meta, "ilst", versionAndFlags), 0, [&](const Mp4Boxes::Box& item) {
        const wchar_t* name = item.is("trkn") ? L"tracknumber" : nullptr;
        for (const Rule& rule : rules)
            if (item.is(rule.box))
                name = rule.name;
        std::wstring value = name ? valueOf(file, item) : std::wstring();
        if (!value.empty())
            tags.AddTag(name, std::move(value));
    });
}

} // namespace corvina
