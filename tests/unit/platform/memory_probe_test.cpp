#include "platform/MemoryProbe.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <windows.h>

namespace corvina {
namespace {

constexpr std::size_t page = 4096;

// Three pages in a row; the test sets what each may.
class MemoryProbe : public testing::Test {
protected:
    void SetUp() override {
        base_ = static_cast<std::uint8_t*>(
            ::VirtualAlloc(nullptr, 3 * page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        ASSERT_NE(base_, nullptr);
    }
    void TearDown() override { ::VirtualFree(base_, 0, MEM_RELEASE); }

    void protect(int index, DWORD protection) {
        DWORD old = 0;
        ASSERT_TRUE(::VirtualProtect(base_ + static_cast<std::size_t>(index) * page, page,
                                     protection, &old));
    }

    std::uint8_t* base_ = nullptr;
};

TEST_F(MemoryProbe, committed_memory_may_be_read_and_written) {
    EXPECT_TRUE(isReadable(base_, 3 * page));
    EXPECT_TRUE(isWritable(base_ + 1, 3 * page - 1));
}

TEST_F(MemoryProbe, read_only_memory_may_only_be_read) {
    protect(1, PAGE_READONLY);
    EXPECT_TRUE(isReadable(base_, 3 * page));
    EXPECT_FALSE(isWritable(base_, 3 * page));
    EXPECT_TRUE(isWritable(base_, page));
}

TEST_F(MemoryProbe, code_may_be_read_but_not_written) {
    const auto* const code = reinterpret_cast<const void*>(&::GetTickCount);
    EXPECT_TRUE(isReadable(code, 1));
    EXPECT_FALSE(isWritable(code, 1));
}

TEST_F(MemoryProbe, one_byte_in_a_forbidden_page_spoils_the_range) {
    protect(2, PAGE_NOACCESS);
    EXPECT_TRUE(isReadable(base_, 2 * page));
    EXPECT_FALSE(isReadable(base_, 2 * page + 1));
    EXPECT_FALSE(isWritable(base_ + page, page + 1));
}

TEST_F(MemoryProbe, a_forbidden_page_in_the_middle_is_seen) {
    protect(1, PAGE_NOACCESS);
    EXPECT_FALSE(isReadable(base_, 3 * page));
}

TEST_F(MemoryProbe, a_guard_page_is_refused_and_stays_armed) {
    protect(1, PAGE_READWRITE | PAGE_GUARD);
    EXPECT_FALSE(isReadable(base_, 3 * page));
    EXPECT_FALSE(isWritable(base_ + page, 1));
    MEMORY_BASIC_INFORMATION region{};
    ASSERT_NE(::VirtualQuery(base_ + page, &region, sizeof region), 0u);
    EXPECT_NE(region.Protect & PAGE_GUARD, 0u);
}

TEST_F(MemoryProbe, reserved_and_free_memory_is_refused) {
    void* const reserved = ::VirtualAlloc(nullptr, page, MEM_RESERVE, PAGE_NOACCESS);
    EXPECT_FALSE(isReadable(reserved, 1));
    ::VirtualFree(reserved, 0, MEM_RELEASE);
    EXPECT_FALSE(isReadable(reserved, 1));
}

TEST_F(MemoryProbe, null_and_numbers_that_are_no_addresses_are_refused) {
    for (const std::uintptr_t address : {0u, 1u, 0xFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(isReadable(reinterpret_cast<const void*>(address), 1)) << address;
        EXPECT_FALSE(isWritable(reinterpret_cast<const void*>(address), 1)) << address;
    }
}

TEST_F(MemoryProbe, a_range_past_the_end_of_the_address_space_is_refused) {
    EXPECT_FALSE(isReadable(base_, SIZE_MAX));
    EXPECT_FALSE(isReadable(reinterpret_cast<const void*>(std::uintptr_t{0xFFFFFFF0u}), 0x20));
}

TEST_F(MemoryProbe, a_range_of_no_bytes_is_always_good) {
    EXPECT_TRUE(isReadable(nullptr, 0));
    EXPECT_TRUE(isWritable(nullptr, 0));
}

} // namespace
} // namespace corvina
