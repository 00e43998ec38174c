// Every format that the audio compression manager decodes plays to its end, with the right length.

#include "SoundTest.h"
#include "support/Media.h"

#include <algorithm>
#include <string_view>

namespace corvina::test {
namespace {

struct Format {
    const char* name;   // of the file build/media/tone-NAME.wav, one second long
    int bytesPerSecond; // of the sound sent to the device
};

// The frames of silence that an underrun has put into what was recorded: those longer than a zero
// of the tone. Behind the tone, the rest of a compressed file's last block is silence too.
std::size_t silenceWithin(const Frames& heard) {
    constexpr std::ptrdiff_t toneFrames = 44100;
    constexpr std::ptrdiff_t zeroOfTone = 50;
    constexpr std::ptrdiff_t largestBlock = 2048;
    std::size_t frames = 0;
    for (auto first = heard.begin(); first != heard.end();) {
        first = std::find(first, heard.end(), Frame{});
        const auto sound =
            std::find_if(first, heard.end(), [](const Frame& frame) { return frame != Frame{}; });
        const bool behindTone = first - heard.begin() >= toneFrames;
        if (sound - first > (behindTone ? largestBlock : zeroOfTone))
            frames += static_cast<std::size_t>(sound - first);
        first = sound;
    }
    return frames;
}

class PlaybackOfFormat : public SoundTest, public ::testing::WithParamInterface<Format> {};

TEST_P(PlaybackOfFormat, plays_to_its_end_with_the_right_length) {
    const std::string_view name = GetParam().name;
    const int bytesPerSecond = GetParam().bytesPerSecond;
    const std::wstring text(name.begin(), name.end());
    expectExactPlayback([&] {
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(mediaFile(L"tone-" + text + L".wav")), 0);
        EXPECT_NEAR(host.duration(), 1.0, 0.02);
        EXPECT_TRUE(host.waitForDone());
        EXPECT_EQ(host.events(), endOfPlayback());

        // The last block is sent whole, with what its slot held before behind the end of the file.
        constexpr double blockBytes = 8000;
        constexpr double slack = 0.05;
        const Frames heard = withoutSilenceBehind(recording.listenUntilQuiet(before, 5s));
        const double seconds = static_cast<double>(heard.size()) / 44100;
        Comparison result{silenceWithin(heard), std::nullopt};
        if (seconds < 1.0 - slack || seconds > 1.0 + 2 * blockBytes / bytesPerSecond + slack)
            result.difference = heard.size(); // the end is not where it should be
        return result;
    });
}

INSTANTIATE_TEST_SUITE_P(Wav, PlaybackOfFormat,
                         ::testing::Values(Format{"mono", 88200}, Format{"8khz", 16000},
                                           Format{"8bit", 88200}, Format{"24bit", 176400},
                                           Format{"ms-adpcm", 88200}, Format{"ima-adpcm", 176400},
                                           Format{"mulaw", 16000}, Format{"alaw", 16000},
                                           Format{"gsm", 16000}),
                         [](const auto& test) {
                             std::string name = test.param.name;
                             std::erase(name, '-');
                             return name;
                         });

} // namespace
} // namespace corvina::test
