#pragma once

// How many more GDI objects this process can make: what was not given back is missing from it. It
// is found by making them all, because not every system counts them for us.

#include <vector>
#include <windows.h>

namespace corvina::test {

[[nodiscard]] inline std::size_t freeGdiObjects() {
    constexpr std::size_t enough = 100'000;
    std::vector<HBRUSH> brushes;
    while (brushes.size() < enough)
        if (const HBRUSH brush = ::CreateSolidBrush(RGB(1, 2, 3)))
            brushes.push_back(brush);
        else
            break;
    for (const HBRUSH brush : brushes)
        ::DeleteObject(brush);
    return brushes.size();
}

} // namespace corvina::test
