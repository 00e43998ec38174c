// The settings of the registered control, as they are heard.

#include "SoundTest.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace corvina::test {
namespace {

class Settings : public SoundTest {
protected:
    // Frames that the recording went on until the condition holds for what was heard since.
    template <typename Condition>
    [[nodiscard]] bool heardSoon(std::size_t since, Condition condition) {
        return pumpUntil([&] { return condition(recording.since(since)); }, 5s);
    }
    static void put(HRESULT result) { ASSERT_EQ(S_OK, result); }
    // Waits until so much has sounded.
    void waitForSound(std::size_t before, std::size_t frames) {
        ASSERT_TRUE(pumpUntil([&] {
            const auto first = recording.soundSince(before);
            return first && recording.now() > *first + frames;
        }));
    }
};

std::int16_t times(std::int16_t sample, double factor) {
    return static_cast<std::int16_t>(std::nearbyint(sample * factor));
}

TEST_F(Settings, volume_and_balance_are_exact_to_one_step) {
    constexpr double left = 0.64, right = 0.64 * 0.5;
    Frames frames = signal(shortLength);
    // No frame becomes silence.
    for (Frame& frame : frames)
        frame.left = static_cast<std::int16_t>(frame.left + (frame.left > 0 ? 10 : -10));
    const std::wstring path = file(frames);
    expectExactPlayback([&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        put(host.control()->put_Volume(80));
        put(host.control()->put_Balance(-50));
        EXPECT_EQ(host.start(path), 0);
        EXPECT_TRUE(host.waitForDone());
        Frames heard = recording.listen(before, frames.size(), 5s);
        Frames expected = frames;
        for (Frame& frame : expected)
            frame = {times(frame.left, left), times(frame.right, right)};
        // One step more or less is as good as none.
        std::size_t at = 0;
        for (const Frame& frame : expected) {
            while (at < heard.size() && heard[at] == Frame{})
                ++at;
            if (at < heard.size() && std::abs(heard[at].left - frame.left) <= 1 &&
                std::abs(heard[at].right - frame.right) <= 1)
                heard[at] = frame;
            ++at;
        }
        return compare(expected, heard);
    });
}

TEST_F(Settings, a_mute_in_mid_play_is_heard_soon_and_without_a_click) {
    constexpr std::int16_t level = 8000;
    const std::wstring path = file(Frames(5 * 44100, Frame{level, level}));
    const std::size_t before = recording.now();
    PlayerHost host;
    ASSERT_EQ(host.start(path), 0);
    waitForSound(before, 22050);
    const std::size_t muted = recording.now();
    put(host.control()->put_Mute(VARIANT_TRUE));
    const auto silentSince = [](const Frames& heard) {
        return std::find_if(heard.begin(), heard.end(),
                            [](const Frame& frame) { return std::abs(frame.left) < level; });
    };
    ASSERT_TRUE(heardSoon(
        muted, [&](const Frames& heard) { return heard.end() - silentSince(heard) > 2000; }));
    const Frames heard = recording.since(muted);
    const auto first = silentSince(heard);
    RecordProperty("frames_until_heard", static_cast<int>(first - heard.begin()));
    // Half a second is queued: what is heard earlier was changed in the queue.
    EXPECT_LT(first - heard.begin(), 11025);
    // Underruns of a busy machine are silence at once; the ramp itself has no jump.
    std::size_t falling = 0;
    for (auto frame = first; frame != heard.end() && frame->left != 0; ++frame)
        ++falling;
    EXPECT_GT(falling, 800u) << "20 ms";
    host.stop();
    ASSERT_TRUE(host.waitForDone());
}

TEST_F(Settings, two_files_joined_by_NextFile_are_heard_as_one) {
    const Frames first = signal(30000 + 777, 1);
    const Frames second = signal(shortLength, 2);
    const std::wstring firstPath = file(first);
    const std::wstring secondPath = file(second);
    Frames both = first;
    both.insert(both.end(), second.begin(), second.end());
    expectRecorded(both, [&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        put(host.control()->put_NextFile(_bstr_t(secondPath.c_str()).GetBSTR()));
        EXPECT_EQ(host.start(firstPath), 0);
        EXPECT_TRUE(host.waitForDone());
        EXPECT_EQ(host.events(), endOfPlayback());
        return recording.listen(before, both.size(), 5s);
    });
}

TEST_F(Settings, a_loop_is_heard_a_hundred_times_without_a_gap) {
    const Frames frames = signal(4001);
    const std::wstring path = file(frames);
    Frames many;
    for (int round = 0; round < 100; ++round)
        many.insert(many.end(), frames.begin(), frames.end());
    expectRecorded(many, [&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        put(host.control()->put_Looping(VARIANT_TRUE));
        EXPECT_EQ(host.start(path), 0);
        const Frames heard = recording.listen(before, many.size(), 20s);
        EXPECT_EQ(host.donePlays(), 0u);
        host.stop();
        EXPECT_TRUE(host.waitForDone());
        return heard;
    });
}

TEST_F(Settings, a_clean_end_is_the_file_and_silence) {
    const Frames frames = signal(shortLength + 321);
    const std::wstring path = file(frames);
    const std::size_t before = recording.now();
    PlayerHost host;
    put(host.control()->put_CleanEnd(VARIANT_TRUE));
    ASSERT_EQ(host.start(path), 0);
    ASSERT_TRUE(host.waitForDone());
    const Frames heard = withoutSilenceBehind(recording.listenUntilQuiet(before, 5s));
    const Comparison result = compare(frames, heard);
    if (result.underrunFrames == 0) {
        EXPECT_EQ(result.difference, std::nullopt);
        EXPECT_EQ(heard.size(), frames.size());
    }
}

TEST_F(Settings, a_jump_is_heard_at_once_at_the_exact_frame) {
    const Frames frames = signal(8 * 44100);
    const std::wstring path = file(frames);
    const std::size_t before = recording.now();
    PlayerHost host;
    ASSERT_EQ(host.start(path), 0);
    waitForSound(before, 22050);
    const std::size_t jumped = recording.now();
    put(host.control()->put_PositionMs(5432));
    const auto target = frames.begin() + 5432 * 441 / 10;
    const auto place = [&](const Frames& heard) {
        return std::search(heard.begin(), heard.end(), target, target + 200);
    };
    ASSERT_TRUE(
        heardSoon(jumped, [&](const Frames& heard) { return place(heard) != heard.end(); }));
    const Frames heard = recording.since(jumped);
    RecordProperty("frames_until_heard", static_cast<int>(place(heard) - heard.begin()));
    EXPECT_LT(place(heard) - heard.begin(), 22050) << "what was queued would last 16000 frames";
    host.stop();
    ASSERT_TRUE(host.waitForDone());
}

} // namespace
} // namespace corvina::test
