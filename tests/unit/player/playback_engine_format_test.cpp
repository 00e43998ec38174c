// The records with which a device is opened, and what its buffers then hold.

#include "PlaybackFixture.h"

namespace corvina::test {
namespace {

using DeviceFormat = Playback;

TEST_F(DeviceFormat, a_refused_record_is_replaced_once_by_one_whose_fields_agree) {
    script.format = pcm(8000, 1, 24);
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::once, WAVERR_BADFORMAT);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(callsOf("Open"), 2);
    EXPECT_EQ(fakeWave.format.wBitsPerSample, 16);
    EXPECT_EQ(fakeWave.format.nBlockAlign, 2);
    EXPECT_EQ(fakeWave.format.nAvgBytesPerSec, 16000u);
}

TEST_F(DeviceFormat, a_record_that_is_taken_stays_as_it_was) {
    script.format = pcm(8000, 1, 24);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(callsOf("Open"), 1);
    EXPECT_EQ(fakeWave.format.nBlockAlign, 3);
}

TEST_F(DeviceFormat, other_failures_are_final) {
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::once, MMSYSERR_ALLOCATED);
    EXPECT_EQ(start(), MMSYSERR_ALLOCATED);
    EXPECT_EQ(callsOf("Open"), 1);
}

TEST_F(DeviceFormat, buffers_hold_whole_blocks_of_three_channels) {
    script.format = pcm(8000, 3, 16);
    script.data = noise(100 * 7998);
    startAndFill();
    ASSERT_FALSE(fakeWave.queued.empty());
    EXPECT_EQ(fakeWave.queued.front()->dwBufferLength, 7998u);
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
}

TEST_F(DeviceFormat, a_short_8_bit_file_ends_in_silence) {
    script.format = pcm(8000, 1, 8);
    script.data = noise(1000);
    ASSERT_EQ(start(), 0);
    dispatchWaitingMessages();
    playOut();
    ASSERT_GE(fakeWave.written.size(), buffer);
    EXPECT_EQ(Bytes(fakeWave.written.begin() + 1000, fakeWave.written.begin() + 8000),
              Bytes(7000, 0x80));
}

} // namespace
} // namespace corvina::test
