#pragma once

// Everything in a file.

#include "stream/FileAccess.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvina::test {

using Bytes = std::vector<std::uint8_t>;

[[nodiscard]] inline Bytes fileBytes(const std::wstring& path) {
    const FileAccess access;
    FileRecord file = access.openForReading(path);
    const std::int32_t size = access.setPosition(file, 0, MoveMethod::fromEnd);
    access.setPosition(file, 0, MoveMethod::fromBeginning);
    Bytes bytes(static_cast<std::size_t>(std::max(size, std::int32_t{0})));
    const std::int32_t got = access.read(file, bytes.data(), size);
    if (got != size)
        throw std::runtime_error("a test file could not be read");
    return bytes;
}

} // namespace corvina::test
