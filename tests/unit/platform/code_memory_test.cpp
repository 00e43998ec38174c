#include "platform/CodeMemory.h"
#include "support/ProcessObjects.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <set>
#include <vector>
#include <windows.h>

namespace corvina::test {
namespace {

// mov eax, number; ret
std::array<std::uint8_t, 6> codeThatReturns(std::uint8_t number) {
    return {0xB8, number, 0, 0, 0, 0xC3};
}

int run(const CodePiece& piece) {
    return reinterpret_cast<int (*)()>(reinterpret_cast<std::uintptr_t>(piece.entry()))();
}

// The first test: the memory is made once in a process.
TEST(CodeMemory, keeps_no_handle) {
    constexpr std::intptr_t lowest = 0x800;
    const int before = countKernelHandles(lowest);
    CodePiece piece(1);
    piece.write(codeThatReturns(7));
    EXPECT_EQ(before, countKernelHandles(lowest));
    EXPECT_EQ(7, run(piece));
}

TEST(CodeMemory, runs_what_was_written_last) {
    CodePiece piece(1);
    piece.write(codeThatReturns(7));
    EXPECT_EQ(7, run(piece));
    piece.write(codeThatReturns(8));
    EXPECT_EQ(8, run(piece));
}

TEST(CodeMemory, gives_each_use_a_piece_of_its_own) {
    CodePiece outer(1);
    CodePiece inner(1);
    outer.write(codeThatReturns(7));
    inner.write(codeThatReturns(8));
    EXPECT_EQ(7, run(outer));
    EXPECT_EQ(8, run(inner));
    const auto distance = outer.entry() > inner.entry() ? outer.entry() - inner.entry()
                                                        : inner.entry() - outer.entry();
    EXPECT_GE(distance, static_cast<std::ptrdiff_t>(CodePiece::size));
}

TEST(CodeMemory, is_written_through_other_addresses_than_it_runs_at) {
    CodePiece piece(1);
    piece.write(codeThatReturns(7));
    MEMORY_BASIC_INFORMATION region{};
    ASSERT_NE(0u, ::VirtualQuery(piece.entry(), &region, sizeof region));
    EXPECT_EQ(static_cast<DWORD>(PAGE_EXECUTE_READ), region.Protect);
}

TEST(CodeMemory, of_the_same_number_still_holds_its_code) {
    const std::uint8_t* former = nullptr;
    {
        CodePiece piece(9);
        piece.write(codeThatReturns(7));
        former = piece.entry();
    }
    const CodePiece again(9);
    EXPECT_EQ(former, again.entry());
    EXPECT_EQ(7, run(again));
}

TEST(CodeMemory, of_neighbouring_numbers_is_spread) {
    std::set<const std::uint8_t*> entries;
    for (std::uint32_t use = 0; use < 100; ++use)
        entries.insert(CodePiece(use).entry());
    EXPECT_GT(entries.size(), 60u);
}

TEST(CodeMemory, ends_with_256_pieces_in_use_and_has_them_all_again_afterwards) {
    for (int round = 0; round < 2; ++round) {
        std::vector<std::unique_ptr<CodePiece>> pieces;
        std::set<const std::uint8_t*> entries;
        for (std::uint32_t use = 0; use < 256; ++use) {
            pieces.push_back(std::make_unique<CodePiece>(use));
            entries.insert(pieces.back()->entry());
        }
        EXPECT_EQ(256u, entries.size());
        EXPECT_EQ(static_cast<std::ptrdiff_t>(255 * CodePiece::size),
                  *entries.rbegin() - *entries.begin());
        EXPECT_THROW(CodePiece(5), std::bad_alloc);
    }
}

TEST(CodeMemory, is_found_whichever_piece_is_the_only_free_one) {
    std::vector<std::unique_ptr<CodePiece>> pieces;
    for (std::uint32_t use = 0; use < 256; ++use)
        pieces.push_back(std::make_unique<CodePiece>(use));
    for (auto& piece : pieces) {
        const std::uint8_t* const entry = piece->entry();
        piece.reset();
        piece = std::make_unique<CodePiece>(5);
        EXPECT_EQ(entry, piece->entry());
    }
}

TEST(CodeMemory, takes_no_more_than_fits_into_a_piece) {
    std::vector<std::unique_ptr<CodePiece>> all;
    for (std::uint32_t use = 0; use < 256; ++use) {
        all.push_back(std::make_unique<CodePiece>(use));
        all.back()->write(codeThatReturns(static_cast<std::uint8_t>(use)));
    }
    const std::vector<std::uint8_t> tooLong(CodePiece::size + 100, 0x90);
    all[100]->write(tooLong);
    int untouched = 0;
    for (std::uint32_t use = 0; use < 256; ++use)
        if (use != 100)
            untouched += run(*all[use]) == static_cast<int>(use);
    EXPECT_EQ(255, untouched);
}

} // namespace
} // namespace corvina::test
