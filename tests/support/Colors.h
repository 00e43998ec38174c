#pragma once

// Colours that tests paint with and look for.

#include <windows.h>

namespace corvina::test {

inline constexpr COLORREF black = RGB(0, 0, 0);
inline constexpr COLORREF green = RGB(0, 255, 0);
inline constexpr COLORREF red = RGB(255, 0, 0);
inline constexpr COLORREF blue = RGB(0, 0, 255);
inline constexpr COLORREF white = RGB(255, 255, 255);

} // namespace corvina::test
