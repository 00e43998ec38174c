#include "LimitedFile.h"

#include "sources/TagInterface.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace corvina::tags {
namespace {

// In one block: the largest picture and what stands around it.
constexpr std::int64_t largestBlock = static_cast<std::int64_t>(largestPictureBytes) + 65536;
// In all. Each call counts as some bytes, or millions of small ones would take long.
constexpr std::int64_t readAtAll = std::int64_t{64} << 20;
constexpr std::int64_t leastOfCall = 256;
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
        length_ = std::min<std::int64_t>(size.QuadPart, std::numeric_limits<Offset>::max());
}

bool LimitedFile::withinLimits(std::int64_t bytes) {
    budget_ -= std::max(bytes, leastOfCall);
    return budget_ >= 0 && stack_ - stackPointer() <= mostStack;
}

TagLib::ByteVector LimitedFile::readBlock(BlockLength length) {
    const std::int64_t left = std::max<std::int64_t>(length_ - position_, 0);
    const std::int64_t wanted = std::min({left, largestBlock,
                                          static_cast<std::int64_t>(std::min<BlockLength>(
                                              length, std::numeric_limits<std::int32_t>::max()))});
    if (!withinLimits(wanted) || wanted == 0)
        return {};
    TagLib::ByteVector block(static_cast<unsigned>(wanted));
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(position_);
    at.OffsetHigh = static_cast<DWORD>(position_ >> 32);
    DWORD got = 0;
    if (!::ReadFile(file_.get(), block.data(), static_cast<DWORD>(wanted), &got, &at))
        got = 0;
    block.resize(got);
    position_ += got;
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
