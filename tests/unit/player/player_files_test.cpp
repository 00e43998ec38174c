// The player with the sources that read real files, on a fake device: what it holds open, how long
// the files are, and where they end.

#include "PlaybackFixture.h"

#include <cstdint>

namespace corvina::test {
namespace {

class RealFiles : public Playback {
protected:
    RealFiles() { EXPECT_EQ(other.init(), 0); }
    ~RealFiles() override {
        other.player.shutdown();
        dispatchWaitingMessages();
    }

    static constexpr std::ptrdiff_t second = 44100 * 4;
    BarePlayer other{{fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeSources}};
};

TEST_F(RealFiles, a_file_is_let_go_when_another_is_started_before_its_close_message_came) {
    const std::wstring first = folder.write(L"first.wav", plainWav(pcm(44100, 2, 16), noise(8000)));
    const std::wstring next = folder.write(L"next.wave", plainWav(pcm(44100, 2, 16), noise(80000)));
    ASSERT_EQ(other.player.PlayStart(first, -1, 0), 0);
    do {
        handleReturnedBuffers();
        fakeWave.finishAll();
    } while (fakeWave.open);
    ASSERT_TRUE(other.player.IsPlaying()) << "the close message still waits";
    ASSERT_EQ(other.player.PlayStart(next, -1, 0), 0);
    EXPECT_TRUE(::DeleteFileW(first.c_str()));
}

TEST_F(RealFiles, a_file_is_let_go_when_the_window_is_lost_while_another_one_is_open) {
    const std::wstring first = folder.write(L"first.wav", plainWav(pcm(44100, 2, 16), noise(8000)));
    const std::wstring next = folder.write(L"next.wave", plainWav(pcm(44100, 2, 16), noise(80000)));
    ASSERT_EQ(other.player.PlayStart(first, -1, 0), 0);
    ASSERT_EQ(other.player.OpenAudioFile(next), 0);
    other.player.windowDestroyed();
    EXPECT_TRUE(::DeleteFileW(first.c_str()));
    EXPECT_TRUE(::DeleteFileW(next.c_str()));
}

TEST_F(RealFiles, the_duration_is_the_same_before_and_while_a_file_plays) {
    const std::wstring wav =
        folder.write(L"a.wav", plainWav(pcm(44100, 2, 16), noise(4 * (44100 + 30))));
    ASSERT_EQ(other.player.OpenAudioFile(wav), 0);
    const std::int32_t before = other.player.DurationMs();
    ASSERT_EQ(other.player.PlayStart(wav, -1, 0), 0);
    EXPECT_EQ(other.player.DurationMs(), before);
    EXPECT_EQ(before, 1001) << "to the nearest";
}

TEST_F(RealFiles, a_duration_that_no_number_holds_is_the_largest) {
    const std::wstring slow = folder.write(L"slow.wav", plainWav(pcm(1, 1, 8), Bytes(3000000)));
    ASSERT_EQ(other.player.OpenAudioFile(slow), 0);
    EXPECT_EQ(other.player.DurationMs(), INT32_MAX);
    EXPECT_EQ(other.player.PlayStart(slow, -1, 0), 0);
    EXPECT_EQ(other.player.DurationMs(), INT32_MAX);
}

// What the converter holds, half a second, plays out first.
TEST_F(RealFiles, with_CleanEnd_end_with_their_data_wherever_PositionSet_has_led) {
    const Bytes sound = noise(second * 3);
    const std::wstring wav = folder.write(L"a.wav", WavBytes()
                                                        .format(pcm(44100, 2, 16))
                                                        .chunk("data", sound)
                                                        .chunk("LIST", noise(100000, 5))
                                                        .bytes());
    other.player.settings().options().cleanEnd = true;
    for (const std::int32_t place : {0, 2}) {
        fakeWave.written.clear();
        ASSERT_EQ(other.player.PlayStart(wav, -1, 0), 0);
        dispatchWaitingMessages();
        ASSERT_EQ(other.player.PositionSet(place), 0);
        playOut();
        Bytes expected(sound.begin(), sound.begin() + second / 2);
        expected.insert(expected.end(), sound.begin() + place * second, sound.end());
        expected.resize((expected.size() + buffer - 1) / buffer * buffer);
        EXPECT_TRUE(fakeWave.written == expected) << place << ": " << fakeWave.written.size();
    }
}

} // namespace
} // namespace corvina::test
