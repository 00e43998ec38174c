#pragma once

// The bytes of a file from which its format is read, in pieces of a few hundred bytes. Behind the
// end of the file, and of a file that cannot be opened, there is nothing.

#include "stream/FileAccess.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvina {

// A piece of a file. What is not there reads as 0.
class FilePiece {
public:
    explicit FilePiece(std::string bytes) noexcept : bytes_(std::move(bytes)) {}

    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
    [[nodiscard]] bool hasAt(std::size_t at, std::string_view text) const noexcept {
        return at <= bytes_.size() && std::string_view(bytes_).substr(at, text.size()) == text;
    }
    // The first place of the text; size() if it is not there.
    [[nodiscard]] std::size_t find(std::string_view text) const noexcept;
    [[nodiscard]] std::uint8_t byte(std::size_t at) const noexcept {
        return at < bytes_.size() ? static_cast<std::uint8_t>(bytes_[at]) : std::uint8_t{0};
    }
    // With the lowest byte first, and with the highest.
    [[nodiscard]] std::uint32_t little(std::size_t at, std::size_t count) const noexcept;
    [[nodiscard]] std::uint32_t big(std::size_t at, std::size_t count) const noexcept;

private:
    std::string bytes_;
};

class FileHead {
public:
    FileHead(const FileAccess& access, const std::wstring& path)
        : access_(access), file_(access.openForReading(path)) {}

    [[nodiscard]] FilePiece piece(std::uint64_t at, std::size_t bytes) const;
    [[nodiscard]] const FileAccess& access() const noexcept { return access_; }
    [[nodiscard]] const FileRecord& file() const noexcept { return file_; }

private:
    const FileAccess& access_;
    FileRecord file_;
};

} // namespace corvina
