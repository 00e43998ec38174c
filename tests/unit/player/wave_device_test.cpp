// The open device: how it is opened, when its handle is forgotten, and the frame that is heard.

#include "player/WaveDevice.h"
#include "support/FakeWave.h"
#include "support/HiddenWindow.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

constexpr PlayedFormat stereo{.sampleRate = 44100, .channels = 2, .bits = 16};

// What the device says of its position.
MMTIME position;
MMRESULT WINAPI positionAsLaidDown(HWAVEOUT, LPMMTIME time, UINT bytes) {
    EXPECT_EQ(bytes, sizeof(MMTIME));
    EXPECT_EQ(time->wType, static_cast<UINT>(TIME_SAMPLES));
    if (fakeWave.faults.strikes("waveOutGetPosition"))
        return MMSYSERR_NODRIVER;
    *time = position;
    return 0;
}

class Device : public ::testing::Test {
protected:
    Device() {
        fakeWave.reset();
        api.outGetPosition = &positionAsLaidDown;
    }
    MMRESULT open(std::int32_t index = -1) {
        return device.open(index, pcm(44100, 2, 16), window.handle());
    }
    std::int64_t positionAt(DWORD count, UINT unit = TIME_SAMPLES) {
        position.wType = unit;
        position.u.sample = count;
        return device.position(stereo);
    }

    HiddenWindow window;
    WaveApi api = fakeWaveApi;
    WaveDevice device{api};
};

TEST_F(Device, sends_its_messages_to_the_window) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(fakeWave.window, window.handle());
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 44100u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(device.handle()), FakeWave::handle);
}

TEST_F(Device, is_mapped_to_what_the_driver_takes_unless_the_system_chooses_it) {
    ASSERT_EQ(open(-1), 0u);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    EXPECT_EQ(fakeWave.flags, static_cast<DWORD>(CALLBACK_WINDOW));
    fakeWave.reset();
    ASSERT_EQ(open(3), 0u);
    EXPECT_EQ(fakeWave.device, 3u);
    EXPECT_EQ(fakeWave.flags, static_cast<DWORD>(CALLBACK_WINDOW | WAVE_MAPPED));
}

TEST_F(Device, that_does_not_open_has_no_handle) {
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::once, WAVERR_BADFORMAT);
    EXPECT_EQ(open(), static_cast<MMRESULT>(WAVERR_BADFORMAT));
    EXPECT_EQ(device.handle(), nullptr);
}

TEST_F(Device, forgets_its_handle_when_it_is_closed_and_keeps_it_if_that_fails) {
    ASSERT_EQ(open(), 0u);
    fakeWave.faults.arm("waveOutClose", 1, Faults::Lasting::once, MMSYSERR_NOMEM);
    EXPECT_EQ(device.close(), static_cast<MMRESULT>(MMSYSERR_NOMEM));
    EXPECT_NE(device.handle(), nullptr);
    EXPECT_EQ(device.close(), 0u);
    EXPECT_EQ(device.handle(), nullptr);
}

TEST_F(Device, is_refused_by_the_system_in_everything_while_it_is_closed) {
    WAVEHDR header{};
    constexpr MMRESULT refused = MMSYSERR_INVALHANDLE;
    EXPECT_EQ(device.prepare(header), refused);
    EXPECT_EQ(device.unprepare(header), refused);
    EXPECT_EQ(device.write(header), refused);
    EXPECT_EQ(device.reset(), refused);
    EXPECT_EQ(device.pause(), refused);
    EXPECT_EQ(device.resume(), refused);
    EXPECT_EQ(device.close(), refused);
}

TEST_F(Device, passes_buffers_and_pauses_on) {
    ASSERT_EQ(open(), 0u);
    Bytes data(8);
    WAVEHDR header{};
    header.lpData = reinterpret_cast<LPSTR>(data.data());
    header.dwBufferLength = 8;
    EXPECT_EQ(device.prepare(header), 0u);
    EXPECT_EQ(device.write(header), 0u);
    EXPECT_EQ(device.unprepare(header), static_cast<MMRESULT>(WAVERR_STILLPLAYING));
    EXPECT_EQ(device.pause(), 0u);
    EXPECT_TRUE(fakeWave.paused);
    EXPECT_EQ(device.resume(), 0u);
    EXPECT_FALSE(fakeWave.paused);
    EXPECT_EQ(device.reset(), 0u);
    EXPECT_EQ(device.unprepare(header), 0u);
}

TEST_F(Device, counts_frames_or_bytes_as_the_driver_does) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(1000), 1000);
    EXPECT_EQ(positionAt(8000, TIME_BYTES), 2000);
}

TEST_F(Device, stays_where_it_was_if_the_driver_counts_in_nothing_known) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(1000), 1000);
    EXPECT_EQ(positionAt(5000, TIME_MS), 1000);
    EXPECT_TRUE(device.responds());
}

TEST_F(Device, counts_on_when_the_number_of_the_driver_begins_again) {
    ASSERT_EQ(open(), 0u);
    std::int64_t expected = 0;
    // Half of the range at a time, as a driver that is asked at least every 13 hours.
    for (const DWORD count : {0x70000000u, 0xE0000000u, 0x50000000u, 0xC0000000u}) {
        expected += 0x70000000;
        EXPECT_EQ(positionAt(count), expected);
    }
    EXPECT_EQ(device.reset(), 0u);
    EXPECT_EQ(positionAt(4 * 0x10000000u, TIME_BYTES), 0x10000000);
}

TEST_F(Device, never_goes_back) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(1000), 1000);
    EXPECT_EQ(positionAt(900), 1000);
    EXPECT_EQ(positionAt(1100), 1100);
}

TEST_F(Device, begins_at_0_after_a_reset_and_after_it_was_opened_again) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(1000), 1000);
    EXPECT_EQ(device.reset(), 0u);
    EXPECT_EQ(positionAt(10), 10);
    ASSERT_EQ(device.close(), 0u);
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(5), 5);
}

TEST_F(Device, stands_still_during_a_pause_though_the_driver_counts_on) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(100), 100);
    ASSERT_EQ(device.pause(), 0u);
    EXPECT_EQ(positionAt(150), 150) << "what was played until the pause";
    EXPECT_EQ(positionAt(4560), 150);
    ASSERT_EQ(device.pause(), 0u);
    EXPECT_EQ(positionAt(5000), 150);
    fakeWave.faults.arm("waveOutRestart", 1);
    EXPECT_NE(device.resume(), 0u);
    EXPECT_EQ(positionAt(5001), 150);
    ASSERT_EQ(device.resume(), 0u);
    EXPECT_EQ(positionAt(5002), 5002);
}

TEST_F(Device, that_refuses_a_pause_counts_on) {
    ASSERT_EQ(open(), 0u);
    fakeWave.faults.arm("waveOutPause", 1);
    EXPECT_NE(device.pause(), 0u);
    EXPECT_EQ(positionAt(100), 100);
    EXPECT_EQ(positionAt(200), 200);
}

TEST_F(Device, counts_again_after_a_reset_or_another_opening_during_a_pause) {
    ASSERT_EQ(open(), 0u);
    ASSERT_EQ(device.pause(), 0u);
    EXPECT_EQ(positionAt(100), 100);
    ASSERT_EQ(device.reset(), 0u);
    EXPECT_EQ(positionAt(10), 10);
    EXPECT_EQ(positionAt(20), 20);
    ASSERT_EQ(device.pause(), 0u);
    EXPECT_EQ(positionAt(30), 30);
    ASSERT_EQ(device.close(), 0u);
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(5), 5);
    EXPECT_EQ(positionAt(6), 6);
}

TEST_F(Device, keeps_its_last_position_and_says_so_if_the_driver_says_none) {
    ASSERT_EQ(open(), 0u);
    EXPECT_EQ(positionAt(1000), 1000);
    fakeWave.faults.arm("waveOutGetPosition", 1);
    EXPECT_EQ(positionAt(2000), 1000);
    EXPECT_FALSE(device.responds());
    EXPECT_EQ(positionAt(2000), 2000);
    EXPECT_TRUE(device.responds());
}

TEST_F(Device, that_was_opened_again_responds_until_it_is_asked) {
    ASSERT_EQ(open(), 0u);
    fakeWave.faults.arm("waveOutGetPosition", 1);
    EXPECT_EQ(positionAt(1000), 0);
    EXPECT_FALSE(device.responds());
    ASSERT_EQ(device.close(), 0u);
    ASSERT_EQ(open(), 0u);
    EXPECT_TRUE(device.responds());
}

} // namespace
} // namespace corvina::test
