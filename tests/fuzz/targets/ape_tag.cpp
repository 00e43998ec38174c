// The tag at the end of an APE file.

#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFiles.h"
#include "sources/ApeTag.h"

#include <string_view>

namespace corvina::fuzz {
namespace {

void useTag(std::span<const std::uint8_t> input) {
    const MemoryFiles disk(input);
    const FileAccess access(MemoryFiles::files());
    StrmTags tags;
    readApeTag(access, L"C:\\a.ape", tags);
    require(tags.TagCount() >= 0, "tags can be counted");
    require(static_cast<std::size_t>(tags.TagCount()) <= input.size() / 9,
            "every tag stands in the file");
}

void add(Bytes& bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

void add(Bytes& bytes, std::string_view text) {
    for (const char character : text)
        bytes.push_back(static_cast<std::uint8_t>(character));
}

Bytes tagged(std::uint32_t version) {
    Bytes bytes;
    add(bytes, "MAC ");
    const std::size_t start = bytes.size();
    for (const std::string_view item :
         {std::string_view("Title\0A", 7), std::string_view("Year\0002001", 9)}) {
        add(bytes, static_cast<std::uint32_t>(item.size() - item.find('\0') - 1));
        add(bytes, std::uint32_t{0});
        add(bytes, item);
    }
    const auto size = static_cast<std::uint32_t>(bytes.size() - start + 32);
    add(bytes, "APETAGEX");
    for (const std::uint32_t number : {version, size, 2u, 0u, 0u, 0u})
        add(bytes, number);
    return bytes;
}

std::vector<Bytes> tagSeeds() {
    return {tagged(1000), tagged(2000)};
}

const FuzzTarget apeTag{"ape_tag", &useTag, &tagSeeds, 512};

} // namespace
} // namespace corvina::fuzz
