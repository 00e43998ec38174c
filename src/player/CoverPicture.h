#pragma once

// A picture object of a picture file's content, by Windows' own decoders: JPEG, PNG, GIF, BMP,
// TIFF. On a thread with COM, which every control's thread has.

#include "com/ComPtr.h"

#include <cstdint>
#include <span>

#include <ocidl.h>

namespace corvina {

// Larger pictures are made smaller, to this many pixels at the longer side.
inline constexpr std::uint32_t longestPictureSide = 2048;
// A picture of more pixels counts as none: to decode it would take too much memory.
inline constexpr std::uint64_t mostPicturePixels = 24'000'000;

// Transparent places become white. Empty if the content is damaged or of no known kind.
[[nodiscard]] ComPtr<IPictureDisp> makePicture(std::span<const std::uint8_t> content);

} // namespace corvina
