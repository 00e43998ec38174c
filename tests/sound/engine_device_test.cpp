// The player's engine on the real wave output device.

#include "support/BarePlayer.h"
#include "support/ProcessObjects.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class EngineOnDevice : public ::testing::Test {
protected:
    void SetUp() override {
        if (::waveOutGetNumDevs() == 0)
            GTEST_SKIP() << "there is no wave output device";
        ASSERT_EQ(host.init(), 0);
    }

    std::wstring wav(std::size_t frames) {
        return folder.write(L"silence.wav", plainWav(pcm(44100, 2, 16), Bytes(frames * 4)));
    }
    // Handles messages until the end was announced.
    [[nodiscard]] bool untilDone() {
        return pumpUntil([&] { return host.player.DonePlay(); }, 30s);
    }

    TempFolder folder;
    BarePlayer host;
    const std::vector<std::wstring> endOfPlayback{L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"};
};

TEST_F(EngineOnDevice, a_file_plays_to_its_end) {
    ASSERT_EQ(host.player.PlayStart(wav(44100), -1, 0), 0);
    EXPECT_TRUE(untilDone());
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(EngineOnDevice, a_file_plays_on_the_device_of_a_number) {
    ASSERT_EQ(host.player.PlayStart(wav(4410), 0, 0), 0);
    EXPECT_TRUE(untilDone());
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(EngineOnDevice, a_file_shorter_than_a_buffer_ends) {
    ASSERT_EQ(host.player.PlayStart(wav(10), -1, 0), 0);
    EXPECT_TRUE(untilDone());
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(EngineOnDevice, a_paused_playback_goes_on_and_a_paused_one_is_stopped) {
    ASSERT_EQ(host.player.PlayStart(wav(44100), -1, 0), 0);
    const std::int32_t silent = host.player.AudioDataOut();
    ASSERT_TRUE(pumpUntil([&] { return host.player.AudioDataOut() != silent; }, 30s));
    EXPECT_EQ(host.player.PlayPause(), 0);
    EXPECT_EQ(host.player.PlayUnPause(), 0);
    EXPECT_EQ(host.player.PlayPause(), 0);
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_TRUE(untilDone());
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(EngineOnDevice, a_device_that_does_not_exist_is_refused) {
    EXPECT_EQ(host.player.PlayStart(wav(10), 1000, 0), MMSYSERR_BADDEVICEID);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_TRUE(host.events.empty());
}

TEST_F(EngineOnDevice, the_end_of_the_player_in_mid_play_closes_the_device) {
    ASSERT_EQ(host.player.PlayStart(wav(441000), -1, 0), 0);
    dispatchWaitingMessages();
    host.player.shutdown();
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.player.PlayPause(), MMSYSERR_INVALHANDLE);
}

TEST_F(EngineOnDevice, two_hundred_rounds_leave_handles_and_objects_as_they_were) {
    const std::wstring file = wav(44100);
    const auto round = [&] {
        host.events.clear();
        ASSERT_EQ(host.player.PlayStart(file, -1, 0), 0);
        dispatchWaitingMessages();
        ASSERT_EQ(host.player.PlayStop(), 0);
        ASSERT_TRUE(untilDone());
        ASSERT_EQ(host.events, endOfPlayback);
    };
    for (int i = 0; i < 10; ++i)
        ASSERT_NO_FATAL_FAILURE(round());
    const int handlesBefore = countKernelHandles();
    const int windowsBefore = countWindows();
    const int gdiBefore = countGdiObjects();
    for (int i = 0; i < 200; ++i)
        ASSERT_NO_FATAL_FAILURE(round()) << i;
    // The sound system's own threads come and go.
    EXPECT_GT(handlesBefore, 0);
    EXPECT_LE(countKernelHandles(), handlesBefore + 8);
    EXPECT_EQ(countWindows(), windowsBefore);
    EXPECT_EQ(countGdiObjects(), gdiBefore);
    RecordProperty("kernel_handles_before", handlesBefore);
    RecordProperty("kernel_handles_after", countKernelHandles());
}

} // namespace
} // namespace corvina::test
