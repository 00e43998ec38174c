#include "runtime/BitReversal.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace corvina {
namespace {

TEST(BitReversal, the_lowest_bits_come_back_in_reverse_order) {
    EXPECT_EQ(reverseBits(0b0000000001U, 10), 0b1000000000U);
    EXPECT_EQ(reverseBits(0b1101U, 4), 0b1011U);
    EXPECT_EQ(reverseBits(0x80000000U, 32), 1U);
    EXPECT_EQ(reverseBits(7, 0), 0U);
}

TEST(BitReversal, the_shared_table_holds_each_index_with_its_ten_bits_reversed) {
    const_cast<BitReversalTable&>(bitReversalTable()).fill(-1); // whatever filled it before
    fillBitReversalTable();
    ASSERT_EQ(bitReversalTable().size(), 1024U);
    for (std::int32_t i = 0; i < 1024; ++i) {
        std::int32_t reversed = 0;
        for (std::int32_t k = 0, rest = i; k < 10; ++k, rest /= 2)
            reversed = 2 * reversed + rest % 2;
        EXPECT_EQ(bitReversalTable()[static_cast<std::size_t>(i)], reversed);
    }
}

} // namespace
} // namespace corvina
