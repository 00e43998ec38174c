#pragma once

// SampleRounding::roundMany with vectors of 256 bits (AVX2): the two halves of a block side by side
// in them, so that what comes out is the same as with the narrower ones. For whole blocks only.

#include "stream/SampleRounding.h"

namespace corvina {

// Call it only if SampleRounding::hasWideVectors(). noise: the generators before and after. The
// number of samples that are done: those in blocks of 2048.
[[nodiscard]] std::size_t roundWide(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                                    std::size_t count, std::uint32_t valid,
                                    NoiseStates& noise) noexcept;

} // namespace corvina
