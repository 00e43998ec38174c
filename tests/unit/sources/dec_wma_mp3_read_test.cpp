// Reading from the Windows Media source.

#include "WindowsMediaFixture.h"
#include "runtime/RuntimeError.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

TEST_F(WindowsMedia, reading_asks_for_the_next_block_of_any_output) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    (void)readFrom(source, 1);
    EXPECT_THAT(library.calls, ElementsAre("GetNextSample 0", "GetBufferAndLength"));
}

TEST_F(WindowsMedia, a_read_across_a_block_boundary_joins_both_blocks) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 7);
    const ReadResult read = readFrom(source, 6);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.bytes, counting(7, 6));
    EXPECT_EQ(readFrom(source, 17).bytes, counting(13, 17));
}

TEST_F(WindowsMedia, a_read_that_ends_with_its_block_does_not_fetch_the_next) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 10);
    EXPECT_EQ(library.next, 1u);
}

TEST_F(WindowsMedia, a_read_that_meets_the_end_returns_5_with_the_bytes_left_and_then_none) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 33);
    EXPECT_FALSE(source.EndOfStream());
    const ReadResult last = readFrom(source, 10);
    EXPECT_EQ(last.result, 5);
    EXPECT_EQ(last.bytes, counting(33, 7));
    EXPECT_TRUE(source.EndOfStream());
    const ReadResult after = readFrom(source, 10);
    EXPECT_EQ(after.result, 5);
    EXPECT_TRUE(after.bytes.empty());
}

TEST_F(WindowsMedia, a_read_of_all_that_is_left_still_returns_0) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 40).result, 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_fetch_that_fails_otherwise_returns_5_without_the_end) {
    library.afterLastBlock = E_FAIL;
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 100).result, 5);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_fetch_that_fails_otherwise_takes_the_end_back) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 100);
    ASSERT_TRUE(source.EndOfStream());
    library.afterLastBlock = E_FAIL;
    (void)readFrom(source, 1);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_block_that_does_not_give_its_bytes_ends_the_read_and_is_released) {
    library.results = {{"GetBufferAndLength", E_FAIL}};
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    const int before = library.objects;
    EXPECT_EQ(readFrom(source, 10).result, 5);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(library.objects, before);
}

TEST_F(WindowsMedia, a_block_that_does_not_give_its_bytes_leaves_the_end_as_it_was) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 100);
    ASSERT_TRUE(source.EndOfStream());
    library.results = {{"GetBufferAndLength", E_FAIL}};
    seek(source, 0, 0);
    ASSERT_EQ(library.calls.back(), "GetBufferAndLength");
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(WindowsMedia, empty_blocks_are_passed_over) {
    layFile(second, {{0, {}}, {1, {}}, {2, counting(0, 4)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 4).bytes, counting(0, 4));
}

TEST_F(WindowsMedia, a_read_before_any_open_fetches_in_vain_and_returns_5) {
    library.blocks.clear();
    DecWMAMP3 source(standInApi);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
    EXPECT_EQ(library.calls.back(), "GetNextSample 0");
}

TEST_F(WindowsMedia, ten_thousand_empty_blocks_in_a_row_are_the_end) {
    for (const auto& [count, result] : {std::pair{9'999, 0}, std::pair{10'000, 5}}) {
        std::vector<StandInBlock> blocks(static_cast<std::size_t>(count));
        blocks.push_back({.bytes = counting(0, 10)});
        layFile(second, std::move(blocks));
        library.noting = false;
        DecWMAMP3 source(standInApi);
        ASSERT_EQ(source.OpenSource(L"song.wma"), 0);
        const ReadResult read = readFrom(source, 10);
        EXPECT_EQ(read.result, result);
        EXPECT_EQ(read.bytes.size(), result == 0 ? 10u : 0u);
    }
}

TEST_F(WindowsMedia, a_read_of_no_bytes_or_fewer_does_nothing) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    for (const std::int32_t count : {0, -1, -2147483647 - 1}) {
        std::int32_t got = 7;
        EXPECT_EQ(source.Read(nullptr, count, got), 0);
        EXPECT_EQ(got, 0);
    }
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(WindowsMedia, memory_that_cannot_be_written_is_counted_as_if_it_had_been) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    static const std::uint8_t constant[25] = {};
    void* const targets[] = {nullptr, reinterpret_cast<void*>(0xFFFFFFF8),
                             const_cast<std::uint8_t*>(constant)};
    for (void* target : targets) {
        seek(source, 0, 0);
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(target, 25, got), 0);
        EXPECT_EQ(got, 25);
        EXPECT_EQ(readFrom(source, 5).bytes, counting(25, 5));
    }
}

TEST_F(WindowsMedia, a_block_whose_length_lies_is_not_read) {
    for (const DWORD reported : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        library.blocks[0].reportedBytes = reported;
        DecWMAMP3 source(standInApi);
        source.OpenSource(L"song.wma");
        const ReadResult read = readFrom(source, 10);
        EXPECT_EQ(read.result, 5);
        EXPECT_TRUE(read.bytes.empty());
    }
    EXPECT_EQ(library.objects, 0);
}

TEST_F(WindowsMedia, a_block_with_a_length_and_no_bytes_is_not_read) {
    library.blocks[0].withoutData = true;
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 10).result, 5);
}

} // namespace
} // namespace corvina::test
