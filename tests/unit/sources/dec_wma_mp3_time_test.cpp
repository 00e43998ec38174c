// The times and the bitrate of the Windows Media source.

#include "WindowsMediaFixture.h"
#include "runtime/RuntimeError.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

TEST_F(WindowsMedia, the_position_moves_in_steps_of_whole_blocks) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Position(), 0);
    (void)readFrom(source, 10);
    EXPECT_EQ(source.Position(), 0);
    (void)readFrom(source, 1);
    EXPECT_EQ(source.Position(), 250);
    (void)readFrom(source, 9);
    EXPECT_EQ(source.Position(), 250);
}

TEST_F(WindowsMedia, the_duration_is_the_attributes_in_milliseconds) {
    layFile(1'234'5'001, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Duration(), 1235);
}

TEST_F(WindowsMedia, a_time_beyond_32_bits_overflows) {
    layFile((QWORD{2147483647} + 1) * millisecond, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_THROW((void)source.Duration(), RuntimeError);
}

TEST_F(WindowsMedia, a_file_without_a_duration_does_not_keep_that_of_the_file_before) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    ASSERT_EQ(source.Duration(), 1000);
    source.CloseSource();
    library.attributes.clear();
    source.OpenSource(L"other.wma");
    EXPECT_EQ(source.Duration(), 0);
}

TEST_F(WindowsMedia, a_bitrate_beyond_32_bits_overflows) {
    library.attributes = {numberAttribute(L"Bitrate", WMT_TYPE_DWORD, DWORD{0x80000000})};
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_THROW((void)source.Bitrate(), RuntimeError);
    library.attributes = {numberAttribute(L"Bitrate", WMT_TYPE_DWORD, DWORD{0x7FFFFFFF})};
    source.OpenSource(L"other.wma");
    EXPECT_EQ(source.Bitrate(), 0x7FFFFFFF);
}

} // namespace
} // namespace corvina::test
