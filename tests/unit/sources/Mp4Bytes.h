#pragma once

// Changes numbers in the boxes of MP4 files.

#include "support/FileBytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace corvina::test {

// The place of the content of the first box of that name from a place on.
inline std::size_t boxContent(const Bytes& bytes, std::string_view name, std::size_t from = 0) {
    const auto found = std::search(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(),
                                   name.begin(), name.end());
    EXPECT_NE(found, bytes.end()) << name;
    return static_cast<std::size_t>(found - bytes.begin()) + name.size();
}

// The file with a number of four bytes at that place of the box.
inline Bytes withNumber(Bytes bytes, std::string_view box, std::size_t at, std::uint32_t number) {
    const std::size_t place = boxContent(bytes, box) + at;
    for (std::size_t byte = 0; byte < 4; ++byte)
        bytes.at(place + byte) = static_cast<std::uint8_t>(number >> (24 - 8 * byte));
    return bytes;
}

} // namespace corvina::test
