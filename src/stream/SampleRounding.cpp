#include "stream/SampleRounding.h"

#include "stream/NarrowRounding.h"
#include "stream/WideRounding.h"

#include <windows.h>

namespace corvina {

// A Windows that does not know these vectors says no, and would not keep them for a thread.
bool SampleRounding::hasWideVectors() noexcept {
#ifndef PF_AVX2_INSTRUCTIONS_AVAILABLE
    constexpr DWORD PF_AVX2_INSTRUCTIONS_AVAILABLE = 40;
#endif
    return ::IsProcessorFeaturePresent(PF_AVX2_INSTRUCTIONS_AVAILABLE) != FALSE;
}

std::size_t SampleRounding::roundMany(SampleForm form, const std::uint8_t* from, std::uint8_t* to,
                                      std::size_t count, std::uint32_t valid) noexcept {
    const std::size_t done = wide_ ? roundWide(form, from, to, count, valid, lanes_) : 0;
    return done + roundNarrow(form, from + done * bytesOf(form), to + done * sizeof(std::int16_t),
                              count - done, valid, lanes_);
}

} // namespace corvina
