#include "platform/MemoryProbe.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>

namespace corvina {
namespace {

TEST(GuardedNew, the_byte_behind_a_block_cannot_be_touched) {
    for (const std::size_t bytes : {1u, 16u, 18u, 4095u, 4096u, 4097u, 88200u}) {
        const auto block = std::make_unique<std::uint8_t[]>(bytes);
        EXPECT_TRUE(isWritable(block.get(), bytes)) << bytes;
        EXPECT_FALSE(isReadable(block.get() + bytes, 1)) << bytes;
    }
}

TEST(GuardedNew, a_freed_block_cannot_be_touched) {
    auto block = std::make_unique<std::uint8_t[]>(100);
    const std::uint8_t* const volatile dead = block.get(); // or the compiler sees that it is freed
    block.reset();
    EXPECT_FALSE(isReadable(dead, 1));
}

} // namespace
} // namespace corvina
