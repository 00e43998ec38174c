#pragma once

// SampleRounding::roundMany with the vectors of 128 bits that every processor has: eight samples at
// a time.

#include "stream/SampleRounding.h"

namespace corvina {

// See SampleRounding::roundMany. noise: the generators before and after.
[[nodiscard]] std::size_t roundNarrow(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                                      std::size_t count, std::uint32_t valid,
                                      NoiseStates& noise) noexcept;

} // namespace corvina
