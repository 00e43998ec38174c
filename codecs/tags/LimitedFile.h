#pragma once

// A file as TagLib reads it, for reading only, with limits: a damaged file must not take long, much
// memory or all of the stack. Beyond a limit the file has nothing more to read.

#include "platform/UniqueHandle.h"

#include <cstdint>
#include <string>
#include <taglib.h>
#include <tbytevector.h>
#include <tiostream.h>
#include <windows.h>

namespace corvina::tags {

// TagLib 2 has other types than TagLib 1.
#if TAGLIB_MAJOR_VERSION >= 2
using Offset = TagLib::offset_t;
using BlockLength = std::size_t;
using InsertOffset = TagLib::offset_t;
using RemoveLength = std::size_t;
#else
using Offset = long;
using BlockLength = unsigned long;
using InsertOffset = unsigned long;
using RemoveLength = unsigned long;
#endif

struct FileTraits {
    using Handle = HANDLE;
    static constexpr Handle none = nullptr;
    static void close(Handle file) noexcept { ::CloseHandle(file); }
};

class LimitedFile final : public TagLib::IOStream {
public:
    explicit LimitedFile(const std::wstring& path);

    // What is in front of that byte of the file is no longer part of what is read.
    void beginAt(std::int64_t start);

    [[nodiscard]] TagLib::FileName name() const override { return path_.c_str(); }
    [[nodiscard]] bool isOpen() const override { return static_cast<bool>(file_); }
    [[nodiscard]] bool readOnly() const override { return true; }
    TagLib::ByteVector readBlock(BlockLength length) override;
    void seek(Offset offset, Position origin) override;
    [[nodiscard]] Offset tell() const override { return static_cast<Offset>(position_); }
    Offset length() override { return static_cast<Offset>(length_); }

    void writeBlock(const TagLib::ByteVector&) override {}
    void insert(const TagLib::ByteVector&, InsertOffset, RemoveLength) override {}
    void removeBlock(InsertOffset, RemoveLength) override {}
    void truncate(Offset) override {}

private:
    [[nodiscard]] bool withinLimits(std::int64_t bytes);
    [[nodiscard]] TagLib::ByteVector readAt(std::int64_t at, std::int64_t bytes);

    const std::wstring path_;
    UniqueHandle<FileTraits> file_;
    std::int64_t whole_ = 0;  // what lies behind the largest Offset is out of reach
    std::int64_t start_ = 0;  // of what is read, in the file
    std::int64_t length_ = 0; // of what is read
    std::int64_t position_ = 0;
    TagLib::ByteVector buffer_; // from bufferAt_ on
    std::int64_t bufferAt_ = 0;
    std::int64_t budget_; // bytes that may still be read
    const char* const stack_;
};

} // namespace corvina::tags
