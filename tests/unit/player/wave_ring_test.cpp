// The ring of buffers by itself.

#include "player/WaveRing.h"
#include "support/FakeWave.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class Ring : public ::testing::Test {
protected:
    Ring() {
        fakeWave.reset();
        const WAVEFORMATEX format{};
        fakeWaveApi.outOpen(&device, 0, &format, 0, 0, 0);
        fakeWave.log.clear();
    }

    HWAVEOUT device = nullptr;
    WaveRing ring{{.sampleRate = 44100, .channels = 2, .bits = 16}, {}};
};

TEST_F(Ring, has_eight_buffers_of_8000_silent_bytes_that_know_their_number) {
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i) {
        WaveBuffer& buffer = ring.next();
        EXPECT_EQ(buffer.header.dwUser, i);
        EXPECT_EQ(buffer.header.dwBufferLength, 8000u);
        EXPECT_EQ(buffer.header.lpData, reinterpret_cast<char*>(buffer.data.data()));
        EXPECT_EQ(buffer.dataAddress, reinterpret_cast<std::intptr_t>(buffer.header.lpData));
        EXPECT_EQ(buffer.data.size(), 4000u);
        EXPECT_THAT(buffer.data, Each(0));
    }
    EXPECT_EQ(&ring.next(), &ring.first());
}

TEST_F(Ring, has_a_spare_record_that_is_never_prepared) {
    ASSERT_EQ(ring.prepare(fakeWaveApi, device), MMSYSERR_NOERROR);
    EXPECT_EQ(fakeWave.prepared.size(), 8u);
    EXPECT_FALSE(fakeWave.prepared.contains(&ring.spare().header));
    EXPECT_EQ(ring.spare().header.lpData, nullptr);
    ring.unprepare(fakeWaveApi, device);
    EXPECT_TRUE(fakeWave.prepared.empty());
}

TEST_F(Ring, prepares_no_more_buffers_behind_one_that_fails) {
    fakeWave.faults.arm("waveOutPrepareHeader", 2, Faults::Lasting::once, MMSYSERR_NOMEM);
    EXPECT_EQ(ring.prepare(fakeWaveApi, device), static_cast<MMRESULT>(MMSYSERR_NOMEM));
    EXPECT_THAT(fakeWave.log, ElementsAre("Prepare 0", "Prepare 1"));
}

TEST_F(Ring, of_8_bits_is_silent_at_half_of_the_range) {
    WaveRing eight{{.sampleRate = 8000, .channels = 1, .bits = 8}, {}};
    EXPECT_THAT(eight.first().bytes(), Each(0x80));
}

TEST_F(Ring, of_frames_larger_than_a_buffer_plays_whole_buffers) {
    WaveRing wide{{.sampleRate = 8000, .channels = 5000, .bits = 16}, {}};
    EXPECT_EQ(wide.first().header.dwBufferLength, 8000u);
}

// The sound of a ring of 2000 frames to a buffer and 1000 to a second, so that a frame is a
// millisecond and settings are reached over 20 frames.
class RingSound : public Ring {
protected:
    // The next buffer, all of that sample, goes to the device.
    WaveBuffer& send(WaveRing& to, std::int16_t sample) {
        WaveBuffer& buffer = to.next();
        std::fill(buffer.data.begin(), buffer.data.end(), sample);
        to.applySettings(buffer);
        buffer.header.dwFlags |= WHDR_INQUEUE;
        return buffer;
    }
    static void finish(WaveBuffer& buffer) {
        buffer.header.dwFlags &= ~static_cast<DWORD>(WHDR_INQUEUE);
    }
    static std::int16_t left(const WaveBuffer& buffer, std::size_t frame) {
        return buffer.data[2 * frame];
    }
    static SoundSettings volume(std::int32_t percent) {
        SoundSettings settings;
        settings.volume = percent;
        return settings;
    }

    const PlayedFormat format{.sampleRate = 1000, .channels = 2, .bits = 16};
    WaveRing sound{format, {}};
};

TEST_F(RingSound, knows_whether_the_device_has_a_buffer) {
    EXPECT_FALSE(sound.anyQueued());
    WaveBuffer& first = send(sound, 1);
    send(sound, 2);
    EXPECT_TRUE(sound.anyQueued());
    finish(first);
    EXPECT_TRUE(sound.anyQueued());
    finish(sound.first());
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i)
        finish(sound.next());
    EXPECT_FALSE(sound.anyQueued());
}

TEST_F(RingSound, changes_from_that_frame_on_in_the_buffer_that_holds_it_and_in_all_behind) {
    const WaveBuffer& first = send(sound, 16000);
    const WaveBuffer& second = send(sound, 16000);
    const WaveBuffer& third = send(sound, 16000);
    sound.setSettings(volume(0), 2100);
    EXPECT_THAT(first.data, Each(16000));
    EXPECT_EQ(left(second, 100), 16000);
    EXPECT_EQ(left(second, 101), 16000 * 19 / 20);
    EXPECT_EQ(left(second, 110), 8000);
    EXPECT_EQ(left(second, 120), 0);
    EXPECT_THAT(third.data, Each(0));
    EXPECT_THAT(send(sound, 16000).data, Each(0));
}

TEST_F(RingSound, changes_from_the_first_frame_of_a_buffer_on_that_is_not_heard_yet) {
    finish(send(sound, 16000));
    const WaveBuffer& second = send(sound, 16000);
    sound.setSettings(volume(0), 1990);
    EXPECT_EQ(left(second, 0), 16000);
    EXPECT_EQ(left(second, 1), 16000 * 19 / 20);
    EXPECT_EQ(left(second, 20), 0);
}

TEST_F(RingSound, brings_back_what_the_settings_of_its_beginning_have_changed) {
    WaveRing quiet{format, volume(50)};
    const WaveBuffer& buffer = send(quiet, 16000);
    EXPECT_THAT(buffer.data, Each(4000));
    quiet.setSettings(volume(100), 500);
    EXPECT_EQ(left(buffer, 499), 4000);
    EXPECT_EQ(left(buffer, 520), 16000);
}

TEST_F(RingSound, reaches_each_of_two_changes_within_a_buffer_where_it_belongs) {
    const WaveBuffer& buffer = send(sound, 16000);
    sound.setSettings(volume(50), 100);
    sound.setSettings(volume(100), 500);
    EXPECT_EQ(left(buffer, 100), 16000);
    EXPECT_EQ(left(buffer, 120), 4000);
    EXPECT_EQ(left(buffer, 500), 4000);
    EXPECT_EQ(left(buffer, 520), 16000);
    EXPECT_EQ(left(buffer, 1999), 16000);
}

TEST_F(RingSound, forgets_a_change_that_an_earlier_one_replaces) {
    const WaveBuffer& first = send(sound, 16000);
    const WaveBuffer& second = send(sound, 16000);
    sound.setSettings(volume(0), 2500);
    sound.setSettings(volume(0), 500);
    sound.setSettings(volume(100), 100);
    EXPECT_THAT(first.data, Each(16000));
    EXPECT_THAT(second.data, Each(16000));
}

TEST_F(RingSound, forgets_the_changes_of_a_buffer_that_is_filled_again) {
    WaveBuffer& first = send(sound, 16000);
    sound.setSettings(volume(0), 100);
    finish(first);
    send(sound, 16000);
    sound.setSettings(volume(100), 2000);
    for (int i = 0; i < 6; ++i)
        send(sound, 16000);
    ASSERT_EQ(&send(sound, 16000), &first);
    sound.setSettings(volume(50), first.firstFrame + 1000);
    EXPECT_EQ(left(first, 999), 16000);
    EXPECT_EQ(left(first, 1000), 16000) << "where the new volume begins to be reached";
    EXPECT_EQ(left(first, 1020), 4000);
}

TEST_F(RingSound, peaks_are_those_of_queued_frames_in_the_range_asked_for) {
    WaveBuffer& buffer = send(sound, 0);
    buffer.data[2 * 50] = -16384;
    buffer.data[2 * 60 + 1] = 8192;
    EXPECT_EQ(sound.peak(0, 50, 1), 0.5);
    EXPECT_EQ(sound.peak(0, 40, 10), 0) << "the frame behind the range";
    EXPECT_EQ(sound.peak(0, 51, 100), 0) << "the frame before it";
    EXPECT_EQ(sound.peak(1, 0, 100), 0.25);
    finish(buffer);
    EXPECT_EQ(sound.peak(0, 0, 100), 0) << "the device has finished it";
}

TEST_F(RingSound, peaks_of_8_bits_are_measured_from_the_middle_of_the_range) {
    WaveRing eight{{.sampleRate = 8000, .channels = 1, .bits = 8}, {}};
    WaveBuffer& buffer = eight.next();
    eight.applySettings(buffer);
    buffer.header.dwFlags |= WHDR_INQUEUE;
    EXPECT_EQ(eight.peak(0, 0, 100), 0);
    buffer.bytes()[7] = 0xC0;
    EXPECT_EQ(eight.peak(0, 0, 100), 0.5);
    buffer.bytes()[8] = 0;
    EXPECT_EQ(eight.peak(0, 0, 100), 1);
}

TEST_F(RingSound, begins_at_frame_0_again_after_a_restart) {
    send(sound, 1);
    EXPECT_EQ(sound.filledFrames(), 2000);
    sound.restart();
    EXPECT_EQ(sound.filledFrames(), 0);
    EXPECT_EQ(send(sound, 1).firstFrame, 0);
}

} // namespace
} // namespace corvina::test
