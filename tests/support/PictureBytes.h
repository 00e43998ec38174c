#pragma once

// Picture files, as bytes.

#include "support/TagBytes.h"

#include <cstdint>

namespace corvina::test {

// Of one colour, 0xRRGGBB. What a header claims of the size goes where another one is given.
[[nodiscard]] inline Bytes bmp(std::uint32_t width, std::uint32_t height, std::uint32_t color,
                               std::uint32_t claimedWidth = 0, std::uint32_t claimedHeight = 0) {
    const std::uint32_t line = (width * 3 + 3) / 4 * 4;
    Bytes pixels(std::size_t{line} * height);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (std::uint32_t part = 0; part < 3; ++part)
                pixels[std::size_t{y} * line + x * 3 + part] =
                    static_cast<std::uint8_t>(color >> 8 * part);
    return joined({bytesOf("BM"), littleNumber(54 + pixels.size()), Bytes(4), littleNumber(54),
                   littleNumber(40), littleNumber(claimedWidth ? claimedWidth : width),
                   littleNumber(claimedHeight ? claimedHeight : height), littleNumber(1, 2),
                   littleNumber(24, 2), Bytes(24), pixels});
}

} // namespace corvina::test
