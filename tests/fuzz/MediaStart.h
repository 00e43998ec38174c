#pragma once

// The first bytes of a file that the media script made, as an input to begin with.

#include "fuzz/FuzzTarget.h"

#include <cstdio>
#include <string>

namespace corvina::fuzz {

// Empty without that file.
[[nodiscard]] inline Bytes mediaStart(const std::string& name, std::size_t bytes) {
    Bytes start(bytes);
    std::FILE* const file = std::fopen(("../../media/" + name).c_str(), "rb");
    start.resize(file ? std::fread(start.data(), 1, bytes, file) : 0);
    if (file)
        std::fclose(file);
    return start;
}

} // namespace corvina::fuzz
