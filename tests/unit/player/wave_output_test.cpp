// A device with its ring: which formats are offered to it, and what is known of the sound.

#include "player/WaveOutput.h"

#include "TrackFixture.h"
#include "support/FakeWave.h"
#include "support/HiddenWindow.h"

#include <algorithm>

namespace corvina::test {
namespace {

class Output : public ::testing::Test {
protected:
    Output() {
        fakeWave.reset();
        fakeAcm.reset();
    }

    MMRESULT open(const WAVEFORMATEX& format) {
        track = std::make_unique<PlayedTrack>(
            L"", std::make_shared<MemorySource>(format, Bytes(100'000)), fakeAcmApi, nullptr);
        EXPECT_TRUE(track->begin());
        return output.open(-1, *track, track->sourceFormat(), {}, window.handle());
    }
    void openAndPrepare() {
        ASSERT_EQ(open(pcm(1000, 2, 16)), 0u);
        ASSERT_EQ(output.prepare(), 0u);
    }
    // Sends a buffer of that sample: 2000 frames.
    void send(std::int16_t sample) {
        WaveBuffer& buffer = output.ring().next();
        std::ranges::fill(buffer.data, sample);
        output.ring().applySettings(buffer);
        EXPECT_EQ(output.device().write(buffer.header), 0u);
    }

    HiddenWindow window;
    std::unique_ptr<PlayedTrack> track;
    WaveOutput output{fakeWaveApi};
};

TEST_F(Output, opens_a_device_with_the_block_align_of_the_source) {
    fakeAcm.refusedBits = {24};
    ASSERT_EQ(open(pcm(44100, 2, 24)), 0u);
    EXPECT_EQ(fakeWave.format.wBitsPerSample, 16);
    EXPECT_EQ(fakeWave.format.nBlockAlign, 6);
    EXPECT_EQ(output.format().bits, 16);
    EXPECT_EQ(fakeWave.opens, 1);
}

TEST_F(Output, offers_a_device_that_refuses_that_a_record_that_agrees) {
    fakeAcm.refusedBits = {24};
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::once, WAVERR_BADFORMAT);
    ASSERT_EQ(open(pcm(44100, 2, 24)), 0u);
    EXPECT_EQ(fakeWave.format.nBlockAlign, 4);
    EXPECT_EQ(fakeWave.format.nAvgBytesPerSec, 4u * 44100);
}

TEST_F(Output, offers_two_channels_only_if_the_sound_has_more) {
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::forever, WAVERR_BADFORMAT);
    EXPECT_EQ(open(pcm(44100, 2, 16)), static_cast<MMRESULT>(WAVERR_BADFORMAT));
    EXPECT_EQ(std::ranges::count(fakeWave.log, "Open"), 2);
    fakeWave.log.clear();
    EXPECT_EQ(open(pcm(44100, 6, 16)), static_cast<MMRESULT>(WAVERR_BADFORMAT));
    EXPECT_EQ(std::ranges::count(fakeWave.log, "Open"), 3);
    EXPECT_EQ(output.format().channels, 2);
}

TEST_F(Output, opens_a_device_with_the_rate_of_what_is_sent) {
    track = std::make_unique<PlayedTrack>(L"", numberedSource(0, 100), fakeAcmApi, nullptr);
    ASSERT_TRUE(track->begin());
    ASSERT_EQ(output.open(-1, *track, pcm(500, 1, 16), {}, window.handle()), 0u);
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 1000u);
}

// A device with two loudspeakers.
MMRESULT WINAPI openForTwoChannels(LPHWAVEOUT result, UINT device, LPCWAVEFORMATEX format,
                                   DWORD_PTR callback, DWORD_PTR instance, DWORD flags) {
    return format->nChannels > 2
               ? WAVERR_BADFORMAT
               : fakeWaveApi.outOpen(result, device, format, callback, instance, flags);
}

TEST_F(Output, sends_whole_buffers_of_two_channels_to_a_device_that_takes_no_more) {
    WaveApi two = fakeWaveApi;
    two.outOpen = &openForTwoChannels;
    WaveOutput narrow(two);
    track = std::make_unique<PlayedTrack>(
        L"", std::make_shared<MemorySource>(pcm(1000, 6, 16), Bytes(12'000)), fakeAcmApi, nullptr);
    ASSERT_TRUE(track->begin());
    ASSERT_EQ(narrow.open(-1, *track, track->sourceFormat(), {}, window.handle()), 0u);
    EXPECT_EQ(narrow.format().channels, 2);
    EXPECT_EQ(narrow.ring().first().header.dwBufferLength, 8000u);
    EXPECT_TRUE(narrow.closeAtOnce());
}

TEST_F(Output, offers_nothing_else_after_another_failure) {
    fakeWave.faults.arm("waveOutOpen", 1, Faults::Lasting::once, MMSYSERR_ALLOCATED);
    EXPECT_EQ(open(pcm(44100, 6, 16)), static_cast<MMRESULT>(MMSYSERR_ALLOCATED));
    EXPECT_EQ(std::ranges::count(fakeWave.log, "Open"), 1);
}

TEST_F(Output, opens_no_device_without_a_window) {
    track = std::make_unique<PlayedTrack>(L"", numberedSource(0, 100), fakeAcmApi, nullptr);
    ASSERT_TRUE(track->begin());
    EXPECT_EQ(output.open(-1, *track, track->sourceFormat(), {}, nullptr),
              static_cast<MMRESULT>(MMSYSERR_INVALPARAM));
    EXPECT_TRUE(fakeWave.log.empty());
}

TEST_F(Output, is_closed_at_once_although_buffers_are_queued) {
    openAndPrepare();
    send(1);
    EXPECT_TRUE(output.closeAtOnce());
    EXPECT_FALSE(fakeWave.open);
    EXPECT_TRUE(fakeWave.prepared.empty());
    EXPECT_EQ(output.device().handle(), nullptr);
}

TEST_F(Output, leaves_the_buffers_to_a_device_that_refuses_to_close) {
    openAndPrepare();
    send(1);
    const std::int16_t* const samples = output.ring().first().data.data();
    fakeWave.faults.arm("waveOutClose", 1);
    EXPECT_FALSE(output.closeAtOnce());
    EXPECT_EQ(output.device().handle(), nullptr);
    EXPECT_EQ(samples[0], 1); // still there
    EXPECT_EQ(output.level(0), 0);
}

TEST_F(Output, hears_no_frame_that_was_not_sent) {
    openAndPrepare();
    send(1);
    fakeWave.framesBeyond = 1500;
    EXPECT_EQ(output.heardFrame(), 1500);
    fakeWave.framesBeyond = 2500;
    EXPECT_EQ(output.heardFrame(), 2000);
}

TEST_F(Output, begins_at_frame_0_after_a_restart_and_stays_paused) {
    openAndPrepare();
    send(1);
    fakeWave.framesBeyond = 1500;
    EXPECT_EQ(output.heardFrame(), 1500);
    output.restart(true);
    EXPECT_EQ(output.heardFrame(), 0);
    EXPECT_TRUE(fakeWave.paused);
    EXPECT_TRUE(fakeWave.queued.empty());
    output.restart(false);
    EXPECT_FALSE(fakeWave.paused);
}

TEST_F(Output, has_the_level_of_what_is_heard) {
    openAndPrepare();
    send(0);
    send(16384);
    EXPECT_EQ(output.level(0), 0);
    fakeWave.framesBeyond = 2000;
    EXPECT_EQ(output.level(0), 0.5);
    EXPECT_EQ(output.level(1), 0.5);
}

TEST_F(Output, has_a_mono_level_for_every_channel) {
    ASSERT_EQ(open(pcm(1000, 1, 16)), 0u);
    ASSERT_EQ(output.prepare(), 0u);
    send(16384);
    EXPECT_EQ(output.level(0), 0.5);
    EXPECT_EQ(output.level(1), 0.5);
}

TEST_F(Output, changes_what_is_still_to_be_heard_but_for_20_ms) {
    openAndPrepare();
    send(16384);
    SoundSettings silent;
    silent.volume = 0;
    output.setSettings(silent);
    const auto bytes = output.ring().first().bytes();
    EXPECT_TRUE(std::ranges::any_of(bytes.first(20 * 4), [](int byte) { return byte != 0; }));
    EXPECT_TRUE(std::ranges::all_of(bytes.last(4), [](int byte) { return byte == 0; }));
    EXPECT_EQ(bytes[20 * 4 - 1], 0x40); // the last frame that a driver may have fetched
    EXPECT_EQ(bytes[20 * 4 + 1], 0x40); // where silence begins to be reached
    EXPECT_LT(bytes[21 * 4 + 1], 0x40);
}

TEST_F(Output, does_not_stall_when_it_has_just_begun) {
    openAndPrepare();
    send(1);
    EXPECT_FALSE(output.stalled(false, false));
    EXPECT_FALSE(output.stalled(false, true));
}

TEST_F(Output, stalls_at_the_first_look_if_it_has_played_nothing_since_it_was_prepared) {
    openAndPrepare();
    send(1);
    ::Sleep(870);
    EXPECT_TRUE(output.stalled(false, false));
    EXPECT_FALSE(output.stalled(true, false)) << "it is paused, and says where it is";
}

TEST_F(Output, stalls_at_the_frame_where_it_was_seen_before) {
    openAndPrepare();
    send(1);
    fakeWave.framesBeyond = 100;
    EXPECT_FALSE(output.stalled(false, false));
    ::Sleep(870);
    EXPECT_TRUE(output.stalled(false, false));
}

TEST_F(Output, stalls_if_it_has_buffers_and_plays_none_of_them) {
    openAndPrepare();
    send(1);
    EXPECT_FALSE(output.stalled(false, false));
    ::Sleep(900);
    EXPECT_TRUE(output.stalled(false, false));
    EXPECT_FALSE(output.stalled(true, false)); // it is paused, and says where it is
    ::Sleep(900);
    fakeWave.faults.arm("waveOutGetPosition", 1, Faults::Lasting::forever);
    EXPECT_TRUE(output.stalled(true, false)); // it says nothing
    output.noteProgress();
    EXPECT_FALSE(output.stalled(true, false));
}

TEST_F(Output, does_not_stall_while_it_plays_or_has_nothing_to_play) {
    openAndPrepare();
    ::Sleep(900);
    EXPECT_FALSE(output.stalled(false, false));
    send(1);
    ::Sleep(900);
    fakeWave.framesBeyond = 1;
    EXPECT_FALSE(output.stalled(false, false));
}

} // namespace
} // namespace corvina::test
