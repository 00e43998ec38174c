// What DecOGG asks of its libraries to read and to seek.

#include "OggFixture.h"
#include "runtime/RuntimeError.h"

#include <gmock/gmock.h>
#include <limits>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(OggCalls, read_asks_once_for_little_endian_signed_16_bit_samples) {
    DecOGG& source = opened();
    char buffer[8];
    results.ovRead = 4;
    std::int32_t got = -1;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, 4); // fewer than asked is no end
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_read", {state, word(buffer), 8, 0, 2, 1}}));
}

TEST_F(OggCalls, the_position_grows_by_what_was_read) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.ovRead = 17640; // 100 ms
    source.Read(buffer, 8, got);
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 200);
}

TEST_F(OggCalls, half_a_millisecond_rounds_to_the_even_position) {
    results.information = {0, 1, 1000, 0, 0, 0, 0, 0};
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.ovRead = 1; // half a sample of 1 ms
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 0);
    results.ovRead = 3; // 1.5
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 2);
}

TEST_F(OggCalls, a_single_byte_moves_the_position) {
    results.information = {0, 1, 100, 0, 0, 0, 0, 0};
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.ovRead = 1; // half a sample of 10 ms
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 5);
}

TEST_F(OggCalls, a_count_whose_thousandfold_overflows_raises_overflow) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.ovRead = 2147484;
    EXPECT_THROW(source.Read(buffer, 8, got), RuntimeError);
    results.ovRead = 2147482;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
}

TEST_F(OggCalls, no_bytes_are_the_end) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = -1;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(OggCalls, a_hole_in_the_data_hands_the_negative_count_on_and_leaves_the_position) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    results.ovRead = -3;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, -3);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(OggCalls, read_on_a_closed_source_returns_1_and_calls_nothing) {
    DecOGG source(StandIns::api());
    char buffer[8];
    std::int32_t got = 77;
    EXPECT_EQ(source.Read(buffer, 8, got), 1);
    EXPECT_EQ(got, 77);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(OggCalls, seeking_by_percent_and_by_seconds_passes_the_time_as_a_double) {
    DecOGG& source = opened(); // 10 s
    EXPECT_EQ(seek(source, 25, 0), 0);
    EXPECT_EQ(source.Position(), 2500);
    EXPECT_EQ(seek(source, 7, 1), 0);
    EXPECT_EQ(source.Position(), 7000);
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(2.5), timeSeek(7)));
}

TEST_F(OggCalls, seeking_to_0_percent_goes_to_the_start_and_resets_the_end) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 8, got);
    libraries.calls.clear();
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(0)));
}

TEST_F(OggCalls, the_ends_of_both_ranges_are_accepted) {
    DecOGG& source = opened();
    EXPECT_EQ(seek(source, 100, 0), 0);
    EXPECT_EQ(seek(source, 10, 1), 0);
}

TEST_F(OggCalls, behind_a_seek_to_the_end_that_the_library_refuses_comes_the_end) {
    DecOGG& source = opened();
    results.ovTimeSeek = -131;
    results.ovRead = 8;
    EXPECT_EQ(seek(source, 10, 1), 0);
    EXPECT_FALSE(source.EndOfStream());
    libraries.calls.clear();
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_THAT(libraries.calls, IsEmpty());
    results.ovTimeSeek = 0;
    EXPECT_EQ(seek(source, 5, 1), 0);
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
}

TEST_F(OggCalls, a_seek_out_of_range_returns_3_and_calls_nothing) {
    DecOGG& source = opened();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t value : {-1, 101, least, most})
        EXPECT_EQ(seek(source, value, 0), 3) << value;
    for (const std::int32_t value : {-1, 11, least, most})
        EXPECT_EQ(seek(source, value, 1), 3) << value;
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(OggCalls, any_other_mode_goes_to_the_start) {
    DecOGG& source = opened();
    EXPECT_EQ(seek(source, 7, 2), 0);
    EXPECT_EQ(seek(source, -7, -1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(0), timeSeek(0)));
}

TEST_F(OggCalls, seeking_a_closed_source_does_nothing) {
    DecOGG source(StandIns::api());
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

} // namespace
} // namespace corvina::test
