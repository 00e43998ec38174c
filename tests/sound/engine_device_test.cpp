// The player's engine on the real wave output device.

#include "support/PlayerHost.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using namespace std::chrono_literals;

class EngineOnDevice : public ::testing::Test {
protected:
    void SetUp() override {
        if (::waveOutGetNumDevs() == 0)
            GTEST_SKIP() << "there is no wave output device";
        ASSERT_EQ(host.init(), 0);
    }

    std::wstring wav(double seconds) {
        const auto format = pcm(44100, 2, 16);
        const auto bytes = static_cast<std::size_t>(seconds * format.nAvgBytesPerSec) / 4 * 4;
        return folder.write(L"noise.wav", plainWav(format, Bytes(bytes)));
    }

    TempFolder folder;
    PlayerHost host;
};

const std::vector<std::wstring> eventsOfAnEnd{L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"};

TEST_F(EngineOnDevice, a_file_plays_to_its_end_and_says_so) {
    ASSERT_EQ(host.player.PlayStart(wav(1.0), -1, 0), 0);
    EXPECT_TRUE(pumpUntil([&] { return host.player.DonePlay(); }, 30s));
    EXPECT_EQ(host.events, eventsOfAnEnd);
}

} // namespace
} // namespace corvina::test
