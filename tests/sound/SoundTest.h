#pragma once

// What the tests of the registered control's sound share: the recording, a folder for files, and
// files that a recording can be compared with.

#include "support/ExpectRecorded.h"
#include "support/PlayerHost.h"
#include "support/Recording.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {

class SoundTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!recording.available())
            GTEST_SKIP() << "CORVINA_HEARD names no recording";
    }

    // A 16-bit stereo file at 44100 Hz.
    std::wstring file(const Frames& frames) {
        return folder.write(std::to_wstring(++files_) + L".wav", stereoWav(frames));
    }

    // What is heard of one playback to its end, from the first sound on.
    Frames playWhole(const std::wstring& path, std::size_t frames) {
        const std::size_t before = recording.now();
        PlayerHost host;
        EXPECT_EQ(host.start(path), 0);
        const auto length = std::chrono::seconds(frames / 44100);
        EXPECT_TRUE(host.waitForDone(1, length + 20s));
        return recording.listen(before, frames, 5s);
    }

    // Lengths around which nothing converts half a second: the rest behind the last whole half
    // second takes more than half of that, and its last block is far from full.
    static constexpr std::size_t shortLength = 12500;

    Recording recording;
    TempFolder folder;

private:
    int files_ = 0;
};

} // namespace corvina::test
