// Seeking in the Windows Media source.

#include "WindowsMediaFixture.h"
#include "runtime/RuntimeError.h"

namespace corvina::test {
namespace {

TEST_F(WindowsMedia, a_percentage_is_of_the_exact_duration) {
    layFile(12'345'678, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 6172839 0");
}

TEST_F(WindowsMedia, a_seek_to_99_percent_is_accepted_and_to_100_refused) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 99, 0), 0);
    EXPECT_EQ(library.takeCalls().front(), "SetRange 9900000 0");
    EXPECT_EQ(seek(source, 100, 0), 4);
    EXPECT_EQ(seek(source, -1, 0), 4);
    EXPECT_EQ(seek(source, 2147483647, 0), 4);
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(WindowsMedia, a_seek_in_seconds_goes_as_far_as_the_duration) {
    layFile(3 * second, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_EQ(library.takeCalls().front(), "SetRange 30000000 0");
    EXPECT_EQ(seek(source, 4, 1), 4);
    EXPECT_EQ(seek(source, -1, 1), 4);
    EXPECT_TRUE(library.calls.empty());
}

// 2.9996 s are 3000 ms when rounded, and so the third second is within it, but the place is taken
// from the exact time.
TEST_F(WindowsMedia, a_seek_in_seconds_is_judged_by_the_rounded_and_placed_by_the_exact_duration) {
    layFile(29'996'000, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 29996000 0");
}

TEST_F(WindowsMedia, a_seek_in_another_mode_goes_to_the_start) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    for (const std::int32_t mode : {2, -1, 77}) {
        (void)library.takeCalls();
        EXPECT_EQ(seek(source, -5, mode), 0);
        EXPECT_EQ(library.calls.front(), "SetRange 0 0");
    }
}

TEST_F(WindowsMedia, a_seek_leaves_the_mode_as_it_was) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    std::int32_t mode = 9;
    source.SeekTo(0, mode);
    EXPECT_EQ(mode, 9);
}

TEST_F(WindowsMedia, a_seek_fetches_the_first_block_there_and_delivers_nothing_from_before) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 3);
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(source.Position(), 500);
    EXPECT_EQ(readFrom(source, 12).bytes, counting(20, 12));
}

TEST_F(WindowsMedia, a_seek_that_finds_no_block_delivers_nothing_from_before_either) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 3);
    EXPECT_EQ(seek(source, 99, 0), 0);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
}

TEST_F(WindowsMedia, a_seek_that_the_reader_refuses_leaves_position_and_held_block) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 13);
    library.results = {{"SetRange", E_FAIL}};
    EXPECT_EQ(seek(source, 0, 0), 4);
    EXPECT_EQ(source.Position(), 250);
    EXPECT_EQ(readFrom(source, 7).bytes, counting(13, 7));
}

TEST_F(WindowsMedia, after_the_end_a_seek_to_the_start_reads_again_but_the_end_stays_noted) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 100);
    ASSERT_TRUE(source.EndOfStream());
    EXPECT_EQ(seek(source, 0, 1), 0);
    const ReadResult read = readFrom(source, 20);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.bytes, counting(0, 20));
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_seek_to_second_0_of_no_duration_raises_the_error_of_0_by_0) {
    layFile(0, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    try {
        (void)seek(source, 0, 1);
        FAIL() << "nothing was raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 6);
    }
}

TEST_F(WindowsMedia, a_percentage_of_no_duration_is_the_start) {
    layFile(0, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 0 0");
}

} // namespace
} // namespace corvina::test
