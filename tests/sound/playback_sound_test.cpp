// A file is heard: every sample, in order, from the first to the last.

#include "PlainWavePlayer.h"
#include "SoundTest.h"

#include <cstdlib>

namespace corvina::test {
namespace {

using Playback = SoundTest;

class PlaybackOfLength : public SoundTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(PlaybackOfLength, is_heard_bit_for_bit_from_the_first_sample_to_the_last) {
    const Frames frames = signal(GetParam());
    const std::wstring path = file(frames);
    expectRecorded(frames, [&] { return playWhole(path, frames.size()); });
}

INSTANTIATE_TEST_SUITE_P(Frames, PlaybackOfLength,
                         ::testing::Values(1, 777, 2001, 8001, 12500, 20123, 30500, 34567, 52100),
                         [](const auto& test) { return std::to_string(test.param); });

// Many minutes take as long as they last: CORVINA_LONG_SECONDS asks for them.
TEST_F(Playback, of_a_long_file_is_heard_at_full_length_without_one_differing_sample) {
    const char* const wish = std::getenv("CORVINA_LONG_SECONDS");
    const std::size_t seconds = wish ? std::strtoul(wish, nullptr, 10) : 12;
    const Frames frames = signal(seconds * 44100 + shortLength);
    const std::wstring path = file(frames);
    expectRecorded(frames, [&] { return playWhole(path, frames.size()); });
}

TEST_F(Playback, of_a_second_file_follows_with_the_same_control) {
    const Frames first = signal(shortLength, 1);
    const Frames second = signal(shortLength, 2);
    const std::wstring firstPath = file(first);
    const std::wstring secondPath = file(second);
    PlayerHost host;
    std::size_t played = 0;
    for (const auto& [frames, path] : {std::pair(first, firstPath), std::pair(second, secondPath)})
        expectRecorded(frames, [&, &frames = frames, &path = path] {
            const std::size_t before = recording.now();
            EXPECT_EQ(host.start(path), 0);
            EXPECT_TRUE(host.waitForDone(++played));
            return recording.listen(before, frames.size(), 5s);
        });
}

TEST_F(Playback, of_the_next_file_may_be_started_inside_DonePlay) {
    const Frames first = signal(shortLength, 1);
    const Frames second = signal(shortLength, 2);
    const std::wstring firstPath = file(first);
    const std::wstring secondPath = file(second);
    Frames heardSecond;
    expectRecorded(first, [&] {
        const std::size_t before = recording.now();
        long result = -1;
        PlayerHost* self = nullptr;
        PlayerHost host([&](const LoggedEvent& event) {
            if (event.name == L"DonePlay" && self->donePlays() == 1)
                result = self->start(secondPath);
        });
        self = &host;
        EXPECT_EQ(host.start(firstPath), 0);
        EXPECT_TRUE(host.waitForDone(2));
        EXPECT_EQ(result, 0);
        EXPECT_EQ(host.events().size(), 2 * endOfPlayback().size());
        // Silence lies between the two; the second begins where its first frame is heard.
        Frames all = recording.listenUntilQuiet(before, 5s);
        const auto begin = std::find(all.begin(), all.end(), second.front());
        heardSecond.assign(begin, all.end());
        return all;
    });
    EXPECT_EQ(compare(second, heardSecond).difference, std::nullopt);
}

TEST_F(Playback, loses_and_repeats_nothing_over_a_pause) {
    const Frames frames = signal(44100 + shortLength);
    const std::wstring path = file(frames);
    const std::size_t before = recording.now();
    PlayerHost host;
    ASSERT_EQ(host.start(path), 0);
    ASSERT_TRUE(pumpUntil([&] { return recording.soundSince(before).has_value(); }));
    ASSERT_EQ(host.pause(), 0);
    const std::size_t paused = recording.now();
    ASSERT_TRUE(pumpUntil([&] { return recording.now() > paused + 22050; }));
    EXPECT_EQ(host.donePlays(), 0u);
    ASSERT_EQ(host.goOn(), 0);
    ASSERT_TRUE(host.waitForDone());

    const Frames heard = recording.listen(before, frames.size(), 5s);
    const Comparison result = compare(frames, heard);
    EXPECT_EQ(result.difference, std::nullopt);
    EXPECT_GT(result.underrunFrames, 11025u) << "the pause itself";
}

TEST_F(Playback, starts_at_a_position_set_before_the_first_message_is_handled) {
    const Frames frames = signal(2 * 44100 + shortLength);
    const std::wstring path = file(frames);
    const Frames rest(frames.begin() + 2 * 44100, frames.end());
    expectRecorded(rest, [&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(path), 0);
        EXPECT_EQ(host.seek(2), 0);
        EXPECT_EQ(host.position(), 2);
        EXPECT_TRUE(host.waitForDone());
        return recording.listen(before, rest.size(), 5s);
    });
}

TEST_F(Playback, plays_out_what_is_queued_and_goes_on_at_a_position_set_in_the_middle) {
    const Frames frames = signal(5 * 44100 + shortLength);
    const Frames rest(frames.begin() + 4 * 44100, frames.end());
    const std::wstring path = file(frames);
    expectExactPlayback([&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(path), 0);
        EXPECT_TRUE(pumpUntil([&] { return recording.soundSince(before).has_value(); }));
        EXPECT_EQ(host.seek(4), 0);
        EXPECT_TRUE(host.waitForDone());

        const Jump jump = compareAcrossJump(frames, rest, recording.listenUntilQuiet(before, 5s));
        EXPECT_LT(jump.at, 3 * 44100u);
        return jump.behind;
    });
}

// Plays until turn, which handles what has come up, returns false; before each turn the host is
// busy with work of its own.
template <typename Turn>
void playWhileBusy(Turn turn) {
    constexpr DWORD busyMs = 250;
    while (turn())
        ::Sleep(busyMs);
}

// Eight blocks last 363 ms; what is left of them must be more than the sound server asks for ahead.
// If even a plain program with the same blocks is interrupted (or a sound server in want of frames
// drops some), the machine has not given the program its turn in time, and the test says nothing
// about the player.
TEST_F(Playback, has_no_gap_while_the_host_is_busy_for_a_quarter_of_a_second_again_and_again) {
    const Frames frames = signal(4 * 44100 + shortLength);
    const std::wstring path = file(frames);
    const auto interrupted = [&](auto play) {
        const std::size_t before = recording.now();
        play();
        const Comparison result = compare(frames, recording.listen(before, frames.size(), 5s));
        return result.underrunFrames > 0 || result.difference.has_value();
    };
    const auto withPlayer = [&] {
        PlayerHost host;
        EXPECT_EQ(host.start(path), 0);
        playWhileBusy([&] {
            dispatchWaitingMessages();
            return host.donePlays() == 0;
        });
    };
    const auto withPlainPlayer = [&] {
        PlainWavePlayer ring(frames);
        playWhileBusy([&] { return ring.refill(); });
    };
    int plainPlayerHeld = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (!interrupted(withPlayer))
            return;
        plainPlayerHeld += interrupted(withPlainPlayer) ? 0 : 1;
    }
    if (plainPlayerHeld < 2)
        GTEST_SKIP() << "this machine is too busy for any ring of eight blocks";
    FAIL() << "each playback was interrupted, and a plain player was not";
}

TEST_F(Playback, of_two_controls_at_once_adds_up) {
    const Frames one = signal(44100 + shortLength, 1);
    const Frames two = signal(44100 + shortLength, 2);
    const std::wstring onePath = file(one);
    const std::wstring twoPath = file(two);
    const std::size_t before = recording.now();
    PlayerHost first;
    PlayerHost second;
    ASSERT_EQ(first.start(onePath), 0);
    ASSERT_EQ(second.start(twoPath), 0);
    ASSERT_TRUE(first.waitForDone());
    ASSERT_TRUE(second.waitForDone());
    EXPECT_EQ(first.events(), endOfPlayback());
    EXPECT_EQ(second.events(), endOfPlayback());
    Frames heard = recording.listenUntilQuiet(before, 5s);

    // The sound of one alone is in the sum: taking it away leaves frames that are nothing else but
    // the other's.
    std::size_t together = 0;
    for (std::size_t lead = 0; lead + 1000 < heard.size() && together == 0; ++lead) {
        std::size_t same = 0;
        while (same < 1000 && heard[lead + same].left == one[lead + same].left + two[same].left)
            ++same;
        together = same == 1000 ? same : 0;
    }
    EXPECT_EQ(together, 1000u);
}

} // namespace
} // namespace corvina::test
