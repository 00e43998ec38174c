#include "sources/AacStreamCheck.h"

#include "sources/FileHead.h"

namespace corvina {
namespace {

constexpr std::size_t tagHeadBytes = 10;
constexpr std::size_t frameHeadBytes = 7;

// Where the frames begin. The length of a tag has seven bits in each of its bytes.
std::uint64_t startOfFrames(const FileHead& file) {
    const FilePiece head = file.piece(0, tagHeadBytes);
    if (!head.hasAt(0, "ID3"))
        return 0;
    std::uint64_t length = 0;
    for (const std::size_t at : {6u, 7u, 8u, 9u})
        length = length << 7 | (head.byte(at) & 0x7Fu);
    return tagHeadBytes + length;
}

} // namespace

bool firstFrameIsWhole(const std::wstring& path, const FileApi& files) {
    constexpr std::uint32_t syncMask = 0xFFF6; // twelve bits, and the layer, which is 0
    const FileAccess access(files);
    const FileHead file(access, path);
    const std::uint64_t start = startOfFrames(file);
    const FilePiece head = file.piece(start, frameHeadBytes);
    if (head.size() < frameHeadBytes || (head.big(0, 2) & syncMask) != 0xFFF0)
        return true;
    const std::size_t length = head.big(3, 3) >> 5 & 0x1FFF;
    return file.piece(start, length).size() == length;
}

} // namespace corvina
