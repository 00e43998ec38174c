#include "sources/Mp4Tags.h"

#include "platform/UniqueHandle.h"
#include "sources/Utf8Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>
#include <windows.h>

namespace corvina {
namespace {

struct FileTraits {
    using Handle = HANDLE;
    static inline const Handle none = INVALID_HANDLE_VALUE;
    static void close(Handle file) noexcept { ::CloseHandle(file); }
};

constexpr std::uint64_t mostBytes = 1 << 20; // of a text; none is so long
constexpr int mostBoxes = 10'000;            // of one level

// A file in boxes: a size, a name of four characters and the content, which may be boxes.
class BoxFile {
public:
    struct Box {
        std::uint64_t content = 0; // position in the file
        std::uint64_t size = 0;    // of the content
        std::array<char, 4> name{};
        [[nodiscard]] bool is(std::string_view wanted) const {
            return std::string_view(name.data(), name.size()) == wanted;
        }
    };

    explicit BoxFile(const std::wstring& path)
        : file_(::CreateFileW(path.c_str(), GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr)) {}

    [[nodiscard]] Box whole() const {
        LARGE_INTEGER size{};
        Box box;
        if (file_ && ::GetFileSizeEx(file_.get(), &size))
            box.size = static_cast<std::uint64_t>(size.QuadPart);
        return box;
    }

    // Calls take(box) for each box in the content of another one, from that byte of it on.
    template <typename Take>
    void forEach(const Box& parent, std::uint64_t from, Take take) const {
        const std::uint64_t end = parent.content + parent.size;
        std::uint64_t at = parent.content + from;
        for (int boxes = 0; boxes < mostBoxes && at + 8 <= end; ++boxes) {
            const std::vector<std::uint8_t> head = read(at, 16);
            if (head.size() < 8)
                return;
            std::uint64_t size = number(head.data(), 4);
            std::uint64_t header = 8;
            if (size == 1 && head.size() == 16) {
                size = number(head.data() + 8, 8);
                header = 16;
            } else if (size == 0) {
                size = end - at;
            }
            if (size < header || size > end - at)
                return;
            Box box{at + header, size - header, {}};
            std::memcpy(box.name.data(), head.data() + 4, box.name.size());
            take(box);
            at += size;
        }
    }

    [[nodiscard]] Box child(const Box& parent, std::string_view name,
                            std::uint64_t from = 0) const {
        Box result;
        forEach(parent, from, [&](const Box& box) {
            if (result.size == 0 && box.is(name))
                result = box;
        });
        return result;
    }

    [[nodiscard]] std::vector<std::uint8_t> bytes(const Box& box) const {
        return read(box.content, static_cast<DWORD>(std::min(box.size, mostBytes)));
    }

    [[nodiscard]] static std::uint64_t number(const std::uint8_t* bytes, std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t index = 0; index < count; ++index)
            value = value << 8 | bytes[index];
        return value;
    }

private:
    [[nodiscard]] std::vector<std::uint8_t> read(std::uint64_t at, DWORD count) const {
        std::vector<std::uint8_t> result(count);
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(at);
        place.OffsetHigh = static_cast<DWORD>(at >> 32);
        DWORD got = 0;
        if (!file_ || !::ReadFile(file_.get(), result.data(), count, &got, &place))
            got = 0;
        result.resize(got);
        return result;
    }

    UniqueHandle<FileTraits> file_;
};

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

std::wstring valueOf(const BoxFile& file, const BoxFile::Box& item) {
    const std::vector<std::uint8_t> data = file.bytes(file.child(item, "data"));
    if (data.size() <= dataHeader)
        return {};
    // The number of the track is a number among others, all else is text.
    if (item.is("trkn"))
        return data.size() < dataHeader + 4
                   ? std::wstring()
                   : std::to_wstring(BoxFile::number(data.data() + dataHeader, 4));
    return fromUtf8(
        {reinterpret_cast<const char*>(data.data()) + dataHeader, data.size() - dataHeader});
}

} // namespace

void readMp4Tags(const std::wstring& path, StrmTags& tags) {
    constexpr std::uint64_t versionAndFlags = 4;
    const BoxFile file(path);
    const BoxFile::Box meta =
        file.child(file.child(file.child(file.whole(), "moov"), "udta"), "meta");
    file.forEach(file.child(meta, "ilst", versionAndFlags), 0, [&](const BoxFile::Box& item) {
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
