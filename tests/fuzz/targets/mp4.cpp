// The boxes of MP4 files: the look over their tables before the system's decoder gets them, and
// their tags.

#include "fuzz/FuzzTarget.h"
#include "fuzz/MediaStart.h"
#include "fuzz/MemoryFiles.h"
#include "sources/Mp4Check.h"
#include "sources/Mp4Tags.h"

namespace corvina::fuzz {
namespace {

void useBoxes(std::span<const std::uint8_t> input) {
    const MemoryFiles disk(input);
    (void)mayBePlayed(L"C:\\a.m4a", MemoryFiles::files());
    StrmTags tags;
    readMp4Tags(L"C:\\a.m4a", tags, MemoryFiles::files());
    require(static_cast<std::size_t>(tags.TagCount()) <= input.size() / 8,
            "every tag stands in the file");
    for (const StrmTag& tag : tags)
        require(!tag.TagName().empty() && !tag.TagValue().empty(), "a tag has a name and a value");
}

void add(Bytes& bytes, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

Bytes box(const std::string& name, const Bytes& content) {
    Bytes bytes;
    add(bytes, static_cast<std::uint32_t>(8 + content.size()));
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.insert(bytes.end(), content.begin(), content.end());
    return bytes;
}

Bytes numbers(std::initializer_list<std::uint32_t> values) {
    Bytes bytes;
    for (const std::uint32_t value : values)
        add(bytes, value);
    return bytes;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

Bytes times() {
    return numbers({0, 0, 0, 1000, 3000, 0, 0, 0});
}

Bytes smallMovie() {
    const Bytes format = box("mp4a", Bytes(28));
    const Bytes tables = joined({
        box("stsd", joined({numbers({0, 1}), format})),
        box("stts", numbers({0, 1, 1, 1024})),
        box("stsc", numbers({0, 1, 1, 1, 1})),
        box("stsz", numbers({0, 0, 1, 4})),
        box("stco", numbers({0, 1, 16})),
    });
    const Bytes media =
        joined({box("mdhd", times()),
                box("hdlr", joined({numbers({0, 0}), {'s', 'o', 'u', 'n'}, Bytes(12)})),
                box("minf", box("stbl", tables))});
    const Bytes track = box(
        "trak",
        joined({box("edts", box("elst", numbers({0, 1, 3000, 0, 0x10000}))), box("mdia", media)}));
    const Bytes title = box("\xA9nam", box("data", joined({numbers({1, 0}), {'A', 0xC3, 0xA4}})));
    const Bytes number = box("trkn", box("data", numbers({0, 0, 7, 0})));
    const Bytes list = box("ilst", joined({title, number}));
    const Bytes tags = box("udta", box("meta", joined({numbers({0}), list})));
    return joined({box("ftyp", {'M', '4', 'A', ' '}),
                   box("moov", joined({box("mvhd", times()), track, tags}))});
}

std::vector<Bytes> movieSeeds() {
    return {smallMovie(), mediaStart("tune.m4a", 4000)};
}

const FuzzTarget mp4{"mp4", &useBoxes, &movieSeeds, 2048};

} // namespace
} // namespace corvina::fuzz
