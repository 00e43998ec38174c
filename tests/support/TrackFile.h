#pragma once

// The file that Windows shows for a track in the root of an audio CD.

#include "support/WavBytes.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace corvina::test {

struct Msf {
    std::uint8_t minute;
    std::uint8_t second;
    std::uint8_t frame;
};

[[nodiscard]] inline Msf msfOf(std::int32_t sectors) {
    return {static_cast<std::uint8_t>(sectors / 4500), static_cast<std::uint8_t>(sectors / 75 % 60),
            static_cast<std::uint8_t>(sectors % 75)};
}

// The length is a plain time; the start counts from two seconds before the program area.
[[nodiscard]] inline Bytes trackFile(Msf start, Msf length) {
    Bytes file(44);
    const auto put = [&](std::size_t offset, std::string_view text) {
        std::copy(text.begin(), text.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
    };
    put(0, "RIFF");
    put(8, "CDDA");
    put(12, "fmt ");
    const auto putTime = [&](std::size_t offset, Msf time) {
        file[offset] = time.frame;
        file[offset + 1] = time.second;
        file[offset + 2] = time.minute;
    };
    putTime(36, start);
    putTime(40, length);
    return file;
}

} // namespace corvina::test
