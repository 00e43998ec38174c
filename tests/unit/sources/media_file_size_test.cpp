// The bitrate of files that do not state one.

#include "sources/MediaFileSize.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <limits>

namespace corvina::test {
namespace {

class AverageBitrate : public testing::Test {
protected:
    // Of a file of 1000 bytes.
    std::int32_t during(double seconds) const { return averageBitrate(path_, seconds); }

    TempFolder folder_;
    const std::wstring path_ = folder_.write(L"a", std::vector<std::uint8_t>(1000));
};

TEST_F(AverageBitrate, is_the_size_in_bits_over_the_duration_cut_to_a_whole_number) {
    EXPECT_EQ(during(2), 4000);
    EXPECT_EQ(during(3), 2666);
    EXPECT_EQ(during(0.5), 16'000);
    EXPECT_EQ(during(8001), 0);
}

TEST_F(AverageBitrate, is_0_without_a_duration_or_a_file) {
    EXPECT_EQ(during(0), 0);
    EXPECT_EQ(during(-1), 0);
    EXPECT_EQ(during(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(averageBitrate(folder_.path() + L"\\no such file", 2), 0);
}

TEST_F(AverageBitrate, is_the_highest_number_where_it_is_beyond_all_numbers) {
    EXPECT_EQ(during(1e-9), std::numeric_limits<std::int32_t>::max());
}

} // namespace
} // namespace corvina::test
