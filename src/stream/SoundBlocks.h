#pragma once

// Compressed sound in blocks of equal length, which can be decoded from the start of any block.

#include <cstdint>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

// The frames that every block of ADPCM, IMA ADPCM or GSM 6.10 decodes to, as the record says behind
// its common part; 0 for any other format. As many bytes as cbSize counts must be readable there.
[[nodiscard]] std::int32_t framesInBlock(const WAVEFORMATEX& record) noexcept;

} // namespace corvina
