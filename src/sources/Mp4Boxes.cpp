#include "sources/Mp4Boxes.h"

#include "stream/FileName.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

constexpr std::uint64_t mostBytes = 1 << 20; // of a content; no text is so long

} // namespace

Mp4Boxes::Mp4Boxes(const std::wstring& path, const FileApi& files)
    : files_(files),
      file_(files, files.createFileWide(fileName(path).wide.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, 0, nullptr)) {}

Mp4Boxes::Box Mp4Boxes::whole() const {
    Box box;
    if (!file_)
        return box;
    LONG upper = 0;
    ::SetLastError(NO_ERROR);
    const DWORD lower = files_.setFilePointer(file_.get(), 0, &upper, FILE_END);
    if (lower != INVALID_SET_FILE_POINTER || ::GetLastError() == NO_ERROR)
        box.size = static_cast<std::uint64_t>(static_cast<DWORD>(upper)) << 32 | lower;
    return box;
}

bool Mp4Boxes::readHead(std::uint64_t at, std::uint64_t end, Box& box) const {
    if (at + 8 > end)
        return false;
    const std::vector<std::uint8_t> head = read(at, 16);
    if (head.size() < 8)
        return false;
    std::uint64_t size = bigEndian(head.data(), 4);
    std::uint64_t header = 8;
    if (size == 1 && head.size() == 16) {
        size = bigEndian(head.data() + 8, 8);
        header = 16;
    } else if (size == 0) {
        size = end - at;
    }
    if (size < header || size > end - at)
        return false;
    box = {at + header, size - header, {}};
    std::memcpy(box.name.data(), head.data() + 4, box.name.size());
    return true;
}

Mp4Boxes::Box Mp4Boxes::child(const Box& parent, std::string_view name, std::uint64_t from) const {
    Box result;
    forEach(parent, from, [&](const Box& box) {
        if (result.size == 0 && box.is(name))
            result = box;
    });
    return result;
}

std::vector<std::uint8_t> Mp4Boxes::bytes(const Box& box) const {
    return read(box.content, static_cast<DWORD>(std::min(box.size, mostBytes)));
}

std::vector<std::uint8_t> Mp4Boxes::read(std::uint64_t at, DWORD count) const {
    std::vector<std::uint8_t> result(count);
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    DWORD got = 0;
    if (!file_ || !files_.readFile(file_.get(), result.data(), count, &got, &place))
        got = 0;
    result.resize(got);
    return result;
}

} // namespace corvina
