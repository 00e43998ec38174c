// Reading from the WAV source, above all near the end of the data.

#include "WavFixture.h"

namespace corvina::test {
namespace {

TEST_F(DecWAVTest, the_doubled_limit_serves_a_small_overrun_whole) {
    openWithMoreBehind(3000);
    leave(1000, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0); // 1500 <= 2 * 1000
    EXPECT_EQ(got, 1500);
    EXPECT_EQ(Bytes(buffer_.begin() + 1000, buffer_.begin() + 1004), (Bytes{'L', 'I', 'S', 'T'}));
    EXPECT_EQ(read(1500, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, the_doubled_limit_delivers_what_the_file_still_has) {
    openPlain(3000);
    leave(1000, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0);
    EXPECT_EQ(got, 1000);
}

TEST_F(DecWAVTest, the_doubled_limit_cuts_an_overrun_of_more_than_half) {
    openWithMoreBehind(3000);
    leave(700, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 5);
    EXPECT_EQ(got, 700);
}

TEST_F(DecWAVTest, an_overrun_of_exactly_half_is_served_whole) {
    openPlain(3000);
    leave(750, 3000);
    std::int32_t got = 0;
    EXPECT_EQ(read(1500, got), 0);
}

TEST_F(DecWAVTest, a_large_file_is_cut_exactly_at_its_end) {
    openSparse(largeData, 4000);
    ASSERT_EQ(seek(330, 1), 0); // 58,212,000 of 58,375,640
    std::int32_t got = 0;
    Bytes skipped(163'640 - 1000);
    ASSERT_EQ(wav_.Read(skipped.data(), 163'640 - 1000, got), 0);
    EXPECT_EQ(read(1001, got), 5);
    EXPECT_EQ(got, 1000);
    EXPECT_EQ(read(1001, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, a_large_file_read_exactly_to_its_end_is_not_ended_yet) {
    openSparse(largeData, 4000);
    ASSERT_EQ(seek(330, 1), 0);
    std::int32_t got = 0;
    Bytes rest(163'640);
    EXPECT_EQ(wav_.Read(rest.data(), 163'640, got), 0);
    EXPECT_EQ(got, 163'640);
    EXPECT_TRUE(wav_.EndOfStream());
    EXPECT_EQ(read(1, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, one_byte_less_than_large_has_the_doubled_limit) {
    openSparse(largeData - 1, 4000);
    ASSERT_EQ(seek(330, 1), 0);
    std::int32_t got = 0;
    Bytes skipped(163'639 - 1000);
    ASSERT_EQ(wav_.Read(skipped.data(), 163'639 - 1000, got), 0);
    EXPECT_EQ(read(2000, got), 0);
    EXPECT_EQ(got, 2000);
}

TEST_F(DecWAVTest, empty_data_is_at_its_end_at_once) {
    openPlain(0);
    EXPECT_TRUE(wav_.EndOfStream());
    std::int32_t got = 77;
    EXPECT_EQ(read(100, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, a_failed_read_counts_minus_one) {
    openPlain(1000);
    fileFaults.arm("ReadFile", 1);
    std::int32_t got = 0;
    EXPECT_EQ(read(100, got), 0);
    EXPECT_EQ(got, -1);
    EXPECT_EQ(read(100, got), 0);
    EXPECT_EQ(got, 100);
}

} // namespace
} // namespace corvina::test
