#include "sources/ApeTag.h"

#include "platform/AnsiText.h"
#include "runtime/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace corvina {
namespace {

struct Footer {
    char identity[8];
    std::uint32_t version;
    std::uint32_t bytes; // of the items and this footer
    std::uint32_t items;
    std::uint32_t flags;
    char reserved[8];
};
static_assert(sizeof(Footer) == 32);

struct ItemHeader {
    std::uint32_t valueBytes;
    std::uint32_t flags;
};

constexpr std::uint32_t largestTag = 16 * 1024 * 1024; // bytes; pictures lie in tags too
constexpr std::uint32_t firstVersionWithTypes = 2000;

// Reads the bytes that end so far before the end of the file; false if they are not there.
bool readBeforeEnd(const FileAccess& access, const FileRecord& file, std::uint32_t distance,
                   void* to, std::uint32_t bytes) {
    const auto count = static_cast<std::int32_t>(bytes);
    const auto back = static_cast<std::int32_t>(distance + bytes);
    return access.setPosition(file, -back, MoveMethod::fromEnd) != -1 &&
           access.read(file, to, count) == count;
}

bool isText(const Footer& footer, const ItemHeader& item) {
    return footer.version < firstVersionWithTypes || ((item.flags >> 1) & 3) == 0;
}

std::wstring asText(std::string_view bytes) {
    return fromAnsiBytes(bytes.substr(0, bytes.find('\0')));
}

void addItems(const Footer& footer, std::string_view items, StrmTags& tags) {
    for (std::uint32_t count = 0; count < footer.items; ++count) {
        ItemHeader header{};
        if (items.size() < sizeof header)
            return;
        std::memcpy(&header, items.data(), sizeof header);
        items.remove_prefix(sizeof header);
        const std::size_t keyLength = items.find('\0');
        if (keyLength == std::string_view::npos)
            return;
        const std::string_view key = items.substr(0, keyLength);
        items.remove_prefix(keyLength + 1);
        if (header.valueBytes > items.size())
            return;
        if (isText(footer, header))
            tags.AddTag(asText(key), asText(items.substr(0, header.valueBytes)));
        items.remove_prefix(header.valueBytes);
    }
}

} // namespace

void readApeTag(const FileAccess& access, const std::wstring& path, StrmTags& tags) {
    const FileRecord file = access.openForReading(path);
    Footer footer{};
    if (!readBeforeEnd(access, file, 0, &footer, sizeof footer) ||
        std::memcmp(footer.identity, "APETAGEX", sizeof footer.identity) != 0)
        return;
    if (footer.bytes < sizeof footer || footer.bytes > largestTag)
        return;
    std::vector<char> items(footer.bytes - sizeof footer);
    if (readBeforeEnd(access, file, sizeof footer, items.data(),
                      static_cast<std::uint32_t>(items.size())))
        addItems(footer, {items.data(), items.size()}, tags);
}

} // namespace corvina
