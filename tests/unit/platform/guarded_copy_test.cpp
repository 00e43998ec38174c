#include "platform/GuardedCopy.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>
#include <windows.h>

namespace corvina {
namespace {

constexpr std::size_t page = 4096;

// Two pages in a row; the test sets the protection of the second.
class GuardedCopy : public testing::Test {
protected:
    void SetUp() override {
        base_ = static_cast<std::uint8_t*>(
            ::VirtualAlloc(nullptr, 2 * page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        ASSERT_NE(base_, nullptr);
        for (std::size_t index = 0; index < 2 * page; ++index)
            base_[index] = static_cast<std::uint8_t>(index * 7);
    }
    void TearDown() override { ::VirtualFree(base_, 0, MEM_RELEASE); }

    void protectSecond(DWORD protection) {
        DWORD old = 0;
        ::VirtualProtect(base_ + page, page, protection, &old);
    }

    std::uint8_t* base_ = nullptr;
    std::array<std::uint8_t, page> copy_{};
};

TEST_F(GuardedCopy, copies_any_number_of_bytes_from_any_address) {
    for (const std::size_t offset : {0u, 1u, 3u})
        for (const std::size_t bytes : {0u, 1u, 2u, 1023u, 4096u}) {
            copy_.fill(0xEE);
            ASSERT_TRUE(copyIfReadable(copy_.data(), base_ + offset, bytes));
            EXPECT_EQ(std::memcmp(copy_.data(), base_ + offset, bytes), 0);
            if (bytes < copy_.size()) {
                EXPECT_EQ(copy_[bytes], 0xEE) << "behind the copy";
            }
        }
}

TEST_F(GuardedCopy, refuses_a_range_with_one_byte_that_cannot_be_read) {
    protectSecond(PAGE_NOACCESS);
    EXPECT_TRUE(copyIfReadable(copy_.data(), base_, page));
    EXPECT_FALSE(copyIfReadable(copy_.data(), base_ + 1, page));
    EXPECT_FALSE(copyIfReadable(copy_.data(), nullptr, 1));
}

TEST_F(GuardedCopy, leaves_a_guard_page_armed) {
    protectSecond(PAGE_READWRITE | PAGE_GUARD);
    EXPECT_FALSE(copyIfReadable(copy_.data(), base_ + 1, page));
    MEMORY_BASIC_INFORMATION region{};
    ASSERT_NE(::VirtualQuery(base_ + page, &region, sizeof region), 0u);
    EXPECT_NE(region.Protect & PAGE_GUARD, 0u);
}

// The thread's time slices decide how often the page goes between the query and the copy: with two
// processors dozens of times in a second, with one now and then.
TEST_F(GuardedCopy, outlives_another_thread_that_takes_the_memory_away) {
    std::atomic<bool> ending = false;
    std::thread taker([&] {
        while (!ending) {
            protectSecond(PAGE_NOACCESS);
            protectSecond(PAGE_READWRITE);
        }
    });
    int copied = 0;
    int refused = 0;
    const DWORD start = ::GetTickCount();
    while (::GetTickCount() - start < 2000 || copied == 0 || refused == 0)
        ++(copyIfReadable(copy_.data(), base_ + page - 16, 1023) ? copied : refused);
    ending = true;
    taker.join();
    EXPECT_GT(copied, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(GuardedCopy, outlives_another_thread_that_frees_the_memory) {
    std::atomic<bool> ending = false;
    std::thread freer([&] {
        while (!ending) {
            ::VirtualFree(base_ + page, page, MEM_DECOMMIT);
            ::VirtualAlloc(base_ + page, page, MEM_COMMIT, PAGE_READWRITE);
        }
    });
    int copied = 0;
    int refused = 0;
    const DWORD start = ::GetTickCount();
    while (::GetTickCount() - start < 2000 || copied == 0 || refused == 0)
        ++(copyIfReadable(copy_.data(), base_ + page - 16, 1023) ? copied : refused);
    ending = true;
    freer.join();
    EXPECT_GT(copied, 0);
    EXPECT_GT(refused, 0);
}

} // namespace
} // namespace corvina
