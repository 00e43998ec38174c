// The measuring instrument itself: what a plain program plays is recorded bit for bit.

#include "PlainWavePlayer.h"
#include "support/ExpectRecorded.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(Recording, goes_on_while_nothing_plays) {
    const Recording recording;
    if (!recording.available())
        GTEST_SKIP() << "CORVINA_HEARD names no recording";
    const std::size_t before = recording.now();
    EXPECT_TRUE(pumpUntil([&] { return recording.now() > before + 4410; }));
}

TEST(Recording, holds_what_a_plain_program_played_bit_for_bit) {
    const Recording recording;
    if (!recording.available())
        GTEST_SKIP() << "CORVINA_HEARD names no recording";
    const Frames played = signal(44100 + 777);
    expectRecorded(played, [&] {
        const std::size_t before = recording.now();
        EXPECT_TRUE(PlainWavePlayer(played).play(15s));
        return recording.listenUntilQuiet(before, 10s);
    });
}

TEST(Recording, shows_where_one_sample_differs) {
    const Frames frames = signal(100);
    Frames other = frames;
    other[57].right ^= 1;
    EXPECT_EQ(compare(frames, other).difference, 57u);
}

TEST(Recording, shows_that_the_end_is_missing) {
    const Frames frames = signal(100);
    EXPECT_EQ(compare(frames, Frames(frames.begin(), frames.end() - 1)).difference, 99u);
}

} // namespace
} // namespace corvina::test
