#pragma once

// An MP4 file in boxes: a size, a name of four characters and the content, which may be boxes. What
// is damaged ends a walk; a file that cannot be opened has no boxes.

#include "platform/FileApi.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <windows.h>

namespace corvina {

// The number that begins with its highest byte.
[[nodiscard]] inline std::uint64_t bigEndian(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < count; ++index)
        value = value << 8 | bytes[index];
    return value;
}

class Mp4Boxes {
public:
    struct Box {
        std::uint64_t content = 0; // position in the file
        std::uint64_t size = 0;    // of the content
        std::array<char, 4> name{};
        [[nodiscard]] bool is(std::string_view wanted) const {
            return std::string_view(name.data(), name.size()) == wanted;
        }
    };

    // The table outlives this object.
    explicit Mp4Boxes(const std::wstring& path, const FileApi& files = systemFileApi);

    // The file as one box.
    [[nodiscard]] Box whole() const;

    // Calls take(box) for each box in the content of another one, from that byte of it on.
    template <typename Take>
    void forEach(const Box& parent, std::uint64_t from, Take take) const {
        const std::uint64_t end = parent.content + parent.size;
        std::uint64_t at = parent.content + from;
        Box box;
        for (int boxes = 0; boxes < mostBoxes && readHead(at, end, box); ++boxes) {
            take(box);
            at = box.content + box.size;
        }
    }

    // The first box of that name with a content; an empty one without.
    [[nodiscard]] Box child(const Box& parent, std::string_view name, std::uint64_t from = 0) const;

    // The content, up to a megabyte of it.
    [[nodiscard]] std::vector<std::uint8_t> bytes(const Box& box) const;

private:
    static constexpr int mostBoxes = 10'000; // of one level

    [[nodiscard]] bool readHead(std::uint64_t at, std::uint64_t end, Box& box) const;
    [[nodiscard]] std::vector<std::uint8_t> read(std::uint64_t at, DWORD count) const;

    const FileApi& files_;
    FileHandle file_;
};

} // namespace corvina
