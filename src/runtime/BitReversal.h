#pragma once

// Bit reversal for the spectrum analysis: reordering by it lets a radix-2 transform run in place.

#include <array>
#include <cstdint>

namespace corvina {

// The lowest bitCount bits of value in reverse order; the bits above are dropped.
[[nodiscard]] constexpr std::uint32_t reverseBits(std::uint32_t value, int bitCount) noexcept {
    std::uint32_t reversed = 0;
    for (int bit = 0; bit < bitCount; ++bit) {
        reversed = reversed << 1 | (value & 1);
        value >>= 1;
    }
    return reversed;
}

inline constexpr int bitReversalTableBits = 10;
using BitReversalTable = std::array<std::int32_t, 1 << bitReversalTableBits>;

// Fills the table that the whole library shares: entry i is i with its 10 bits reversed. Call it
// before the table is used; a second call changes nothing.
void fillBitReversalTable() noexcept;

[[nodiscard]] const BitReversalTable& bitReversalTable() noexcept;

} // namespace corvina
