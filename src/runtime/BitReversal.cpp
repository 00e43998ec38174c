#include "runtime/BitReversal.h"

namespace corvina {
namespace {

BitReversalTable table;

} // namespace

void fillBitReversalTable() noexcept {
    for (std::uint32_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::int32_t>(reverseBits(i, bitReversalTableBits));
}

const BitReversalTable& bitReversalTable() noexcept {
    return table;
}

} // namespace corvina
