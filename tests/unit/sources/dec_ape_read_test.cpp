// What DecAPE asks of MACDll.dll to read and to seek.

#include "ApeFixture.h"
#include "runtime/RuntimeError.h"

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ApeCalls, read_asks_for_blocks_and_returns_bytes) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.retrieved = 1;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, 4);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 2}}));
}

TEST_F(ApeCalls, the_size_of_a_block_is_that_of_the_record_whatever_the_library_says) {
    results.information[1007] = 6;
    DecAPE& source = opened();
    char buffer[12];
    std::int32_t got = 0;
    results.retrieved = 2;
    source.Read(buffer, 12, got);
    EXPECT_EQ(got, 8);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 3}}));
}

TEST_F(ApeCalls, part_of_a_block_is_never_asked_for_because_the_buffer_has_no_room_for_the_rest) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 5, got);
    source.Read(buffer, 7, got); // 1.75 blocks, nearest 2
    source.Read(buffer, 3, got);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 1}},
                                             Call{"GetData", {handle, word(buffer), 1}},
                                             Call{"GetData", {handle, word(buffer), 0}}));
}

TEST_F(ApeCalls, reading_at_the_end_returns_5_with_0_bytes) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(ApeCalls, a_library_that_fails_without_a_count_has_delivered_nothing) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 7;
    results.fails = true;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(ApeCalls, read_on_a_closed_source_returns_1_and_calls_nothing) {
    DecAPE source(StandIns::api());
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 8, got), 1);
    EXPECT_EQ(got, 7);
    EXPECT_THAT(libraries.loads, IsEmpty());
}

TEST_F(ApeCalls, reading_a_file_that_the_library_refused_is_a_division_by_zero) {
    results.create = 0;
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    EXPECT_THROW(source.Read(buffer, 8, got), RuntimeError);
}

TEST_F(ApeCalls, half_a_block_rounds_to_the_even_one) {
    results.information[1016] = 1'000'001;
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 50, 0), 0); // 500,000.5
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 500'000}}));
}

TEST_F(ApeCalls, seconds_are_the_same_part_of_the_blocks_as_of_the_length) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 132'300}}));
}

TEST_F(ApeCalls, the_ends_of_both_ranges_are_accepted) {
    DecAPE& source = opened();
    for (const std::int32_t mode : {0, 1})
        EXPECT_EQ(seek(source, 0, mode), 0);
    EXPECT_EQ(seek(source, 100, 0), 0);
    EXPECT_EQ(seek(source, 10, 1), 0);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"Seek", {handle, 0}}, Call{"Seek", {handle, 0}},
                            Call{"Seek", {handle, 441'000}}, Call{"Seek", {handle, 441'000}}));
}

TEST_F(ApeCalls, a_seek_out_of_range_returns_3_and_calls_nothing) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, -1, 0), 3);
    EXPECT_EQ(seek(source, 101, 0), 3);
    EXPECT_EQ(seek(source, -1, 1), 3);
    EXPECT_EQ(seek(source, 11, 1), 3);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(ApeCalls, the_start_can_be_sought_in_a_file_without_length) {
    results.information[1017] = 0;
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 0, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 0}}));
}

TEST_F(ApeCalls, any_other_mode_goes_to_the_start) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 5, 2), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 0}}));
}

TEST_F(ApeCalls, a_seek_after_the_end_resets_it) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 8, got);
    seek(source, 0, 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(ApeCalls, seeking_a_closed_source_does_nothing) {
    DecAPE source(StandIns::api());
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_THAT(libraries.loads, IsEmpty());
}

} // namespace
} // namespace corvina::test
