#include "LimitedFile.h"

#include "sources/TagInterface.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace corvina::tags {
namespace {

// In one block: the largest picture and what stands around it.
constexpr std::int64_t largestBlock = static_cast<std::int64_t>(largestPictureBytes) + 65536;
// In all. Each call counts as some more, or millions of small ones would take long.
constexpr std::int64_t readAtAll = std::int64_t{64} << 20;
constexpr std::int64_t leastOfCall = 64;
// Tags are read in small pieces.
constexpr std::int64_t bufferBytes = 4096;
// Some formats are read by functions that call themselves, as deep as a file is nested.
constexpr std::ptrdiff_t mostStack = std::ptrdiff_t{128} * 1024;

[[gnu::noinline]] const char* stackPointer() {
    return static_cast<const char*>(__builtin_frame_address(0));
}

UniqueHandle<FileTraits> openToRead(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return UniqueHandle<FileTraits>(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

} // namespace

LimitedFile::LimitedFile(const std::wstring& path)
    : path_(path), file_(openToRead(path)), budget_(readAtAll), stack_(stackPointer()) {
    LARGE_INTEGER size{};
    if (file_ && ::GetFileType(file_.get()) == FILE_TYPE_DISK &&
        ::GetFileSizeEx(file_.get(), &size))
        whole_ = std::min<std::int64_t>(size.QuadPart, std::numeric_limits<Offset>::max());
    length_ = whole_;
}

void LimitedFile::beginAt(std::int64_t start) {
    start_ = std::min(start, whole_);
    length_ = whole_ - start_;
    position_ = 0;
    buffer_.clear();
}

bool LimitedFile::withinLimits(std::int64_t bytes) {
    budget_ -= bytes;
    return budget_ >= 0 && stack_ - stackPointer() <= mostStack;
}

TagLib::ByteVector LimitedFile::readBlock(BlockLength length) {
    const std::int64_t left = std::max<std::int64_t>(length_ - position_, 0);
    const std::int64_t wanted = std::min({left, largestBlock,
                                          static_cast<std::int64_t>(std::min<BlockLength>(
                                              length, std::numeric_limits<std::int32_t>::max()))});
    TagLib::ByteVector block;
    if (!withinLimits(leastOfCall) || wanted == 0)
        return block;
    if (wanted > bufferBytes) {
        block = readAt(position_, wanted);
    } else {
        if (position_ < bufferAt_ || position_ + wanted > bufferAt_ + buffer_.size()) {
            bufferAt_ = position_;
            buffer_ = readAt(position_, std::min(left, bufferBytes));
        }
        block = buffer_.mid(static_cast<unsigned>(position_ - bufferAt_),
                            static_cast<unsigned>(wanted));
    }
    position_ += block.size();
    return block;
}

TagLib::ByteVector LimitedFile::readAt(std::int64_t at, std::int64_t bytes) {
    if (!withinLimits(bytes))
        return {};
    TagLib::ByteVector block(static_cast<unsigned>(bytes));
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(start_ + at);
    place.OffsetHigh = static_cast<DWORD>((start_ + at) >> 32);
    DWORD got = 0;
    if (!::ReadFile(file_.get(), block.data(), static_cast<DWORD>(bytes), &got, &place))
        got = 0;
    block.resize(got);
    return block;
}

void LimitedFile::seek(Offset offset, Position origin) {
    std::int64_t from = 0;
    if (origin == Current)
        from = position_;
    else if (origin == End)
        from = length_;
    position_ = std::max<std::int64_t>(from + offset, 0);
}

} // namespace corvina::tags
