// The playback engine in mid-play: stopping, pausing, starting again, and looking at what plays.

#include "PlaybackFixture.h"
#include "support/ProcessObjects.h"

#include <cstring>

namespace corvina::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Playback, starting_while_playing_returns_minus_201_and_leaves_the_playback_alone) {
    startAndFill();
    takeLog();
    script.log.clear();
    EXPECT_EQ(start(), -201);
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_THAT(script.log, IsEmpty());
    EXPECT_THAT(host.events, IsEmpty());
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
}

TEST_F(Playback, starting_while_the_buffers_come_back_returns_minus_201) {
    startAndFill();
    host.player.PlayStop();
    EXPECT_EQ(start(), -201);
    dispatchWaitingMessages();
    EXPECT_EQ(start(), 0);
}

TEST_F(Playback, stopping_resets_and_closes_the_source_at_once) {
    startAndFill();
    takeLog();
    script.log.clear();
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_THAT(takeLog(), ElementsAre("Reset"));
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(fakeAcm.openStreams, 0);
    EXPECT_TRUE(fakeWave.open) << "the device closes when its eight buffers have come back";
    EXPECT_TRUE(host.player.IsPlaying());
}

TEST_F(Playback, stopping_resets_the_device_then_closes_the_source_and_then_the_converter) {
    startAndFill();
    fakeWave.log.clear();
    int closed = 0;
    script.onClose = [&] {
        ++closed;
        EXPECT_EQ(fakeWave.log, std::vector<std::string>{"Reset"});
        EXPECT_EQ(fakeAcm.openStreams, 1) << "the converter is closed last";
    };
    EXPECT_EQ(host.player.PlayStop(), 0);
    script.onClose = nullptr;
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

TEST_F(Playback, stopping_ends_with_the_same_events_as_the_end_of_the_file) {
    startAndFill();
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, stopping_before_the_ring_is_filled_ends_too) {
    ASSERT_EQ(start(), 0);
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.writes, 0);
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, stopping_twice_resets_again) {
    startAndFill();
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(callsOf("Reset"), 2);
    dispatchWaitingMessages();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(Playback, stopping_while_paused_ends) {
    startAndFill();
    ASSERT_EQ(host.player.PlayPause(), 0);
    EXPECT_EQ(host.player.PlayStop(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_TRUE(host.player.IsPausedOut()) << "only the next start clears it";
    ASSERT_EQ(start(), 0);
    EXPECT_FALSE(host.player.IsPausedOut());
}

TEST_F(Playback, stopping_when_nothing_plays_returns_0_and_raises_nothing) {
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_THAT(fakeWave.log, IsEmpty());
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(Playback, a_pause_holds_the_ring_and_going_on_loses_nothing) {
    startAndFill();
    EXPECT_EQ(host.player.PlayPause(), 0);
    EXPECT_TRUE(host.player.IsPausedOut());
    EXPECT_FALSE(fakeWave.finishOne());
    EXPECT_EQ(host.player.PlayUnPause(), 0);
    EXPECT_FALSE(host.player.IsPausedOut());
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
}

TEST_F(Playback, pausing_when_nothing_plays_returns_the_devices_refusal) {
    EXPECT_EQ(host.player.PlayPause(), MMSYSERR_INVALHANDLE);
    EXPECT_EQ(host.player.PlayUnPause(), MMSYSERR_INVALHANDLE);
    EXPECT_FALSE(host.player.IsPausedOut());
}

TEST_F(Playback, once_its_device_is_closed_a_player_leaves_alone_who_has_the_handle_now) {
    startAndFill();
    host.player.PlayStop();
    playOut();
    ASSERT_EQ(host.events.back(), L"DonePlay");
    fakeWave.open = true;
    EXPECT_EQ(host.player.PlayPause(), MMSYSERR_INVALHANDLE);
    EXPECT_EQ(host.player.PlayUnPause(), MMSYSERR_INVALHANDLE);
    EXPECT_FALSE(fakeWave.paused);
    EXPECT_FALSE(host.player.IsPausedOut());
    fakeWave.open = false;
}

TEST_F(Playback, the_reset_at_the_end_does_not_stop_who_has_the_handle_by_then) {
    startAndFill();
    host.player.PlayStop();
    host.events.clear();
    handleReturnedBuffers();
    ASSERT_FALSE(fakeWave.open);
    fakeWave.open = true;
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, ElementsAre(L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    fakeWave.open = false;
}

TEST_F(Playback, a_failed_pause_changes_nothing) {
    startAndFill();
    fakeWave.faults.arm("waveOutPause", 1, Faults::Lasting::once, MMSYSERR_NOTSUPPORTED);
    EXPECT_EQ(host.player.PlayPause(), MMSYSERR_NOTSUPPORTED);
    EXPECT_FALSE(host.player.IsPausedOut());
    ASSERT_EQ(host.player.PlayPause(), 0);
    fakeWave.faults.arm("waveOutRestart", 1, Faults::Lasting::once, MMSYSERR_NOTSUPPORTED);
    EXPECT_EQ(host.player.PlayUnPause(), MMSYSERR_NOTSUPPORTED);
    EXPECT_TRUE(host.player.IsPausedOut());
}

TEST_F(Playback, AudioDataOut_is_0_before_the_first_playback) {
    EXPECT_EQ(host.player.AudioDataOut(), 0);
}

TEST_F(Playback, AudioDataOut_shows_1024_silent_samples_before_the_first_refill) {
    ASSERT_EQ(start(), 0);
    const auto* samples = reinterpret_cast<const std::int16_t*>(host.player.AudioDataOut());
    ASSERT_NE(samples, nullptr);
    EXPECT_THAT(std::vector<std::int16_t>(samples, samples + 1024), Each(0));
}

TEST_F(Playback, AudioDataOut_is_a_copy_of_the_last_block_at_a_new_address_each_time) {
    ASSERT_EQ(start(), 0);
    std::int32_t before = host.player.AudioDataOut();
    dispatchWaitingMessages();
    for (std::size_t block = 8; block < 40; ++block) {
        fakeWave.finishOne();
        dispatchWaitingMessages();
        const std::int32_t address = host.player.AudioDataOut();
        ASSERT_NE(address, before);
        ASSERT_EQ(std::memcmp(reinterpret_cast<const void*>(address),
                              script.data.data() + block * buffer, buffer),
                  0);
        before = address;
    }
}

TEST_F(Playback, AudioDataOut_stays_readable_after_the_end) {
    startAndFill();
    playOut();
    const auto* samples = reinterpret_cast<const std::uint8_t*>(host.player.AudioDataOut());
    ASSERT_GE(fakeWave.written.size(), buffer);
    EXPECT_TRUE(std::equal(samples, samples + buffer, fakeWave.written.end() - buffer));
}

TEST_F(Playback, a_start_between_close_and_close_message_is_stopped_by_that_message) {
    startAndFill();
    host.player.PlayStop();
    handleReturnedBuffers();
    ASSERT_FALSE(fakeWave.open);
    EXPECT_TRUE(host.player.IsPlaying());
    host.events.clear();
    ASSERT_EQ(start(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.writes, 8) << "nothing of the second playback was heard";
    EXPECT_THAT(host.events, ElementsAre(L"DonePlay", L"DonePlay"))
        << "the first for the stopped playback, the second when its device has closed";
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, a_start_inside_the_DonePlay_handler_plays_the_next_file) {
    int ends = 0;
    host.onDonePlay = [&] {
        if (++ends < 3) {
            EXPECT_EQ(start(), 0);
        }
    };
    startAndFill();
    for (int i = 0; i < 3; ++i)
        playOut();
    EXPECT_EQ(ends, 3);
    EXPECT_EQ(fakeWave.opens, 3);
    EXPECT_EQ(host.countOf(L"StopPlayAudio:waveOutReset|5|5"), 3);
    EXPECT_EQ(fakeWave.written.size(), 3 * script.data.size());
}

TEST_F(Playback, seeking_leaves_the_device_and_the_converter_alone) {
    startAndFill();
    takeLog();
    const auto conversions = fakeAcm.openings.size();
    EXPECT_EQ(host.player.PositionSet(5), 0);
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_EQ(fakeAcm.openings.size(), conversions);
}

TEST_F(Playback, forged_messages_when_nothing_plays_touch_no_device) {
    for (int i = 0; i < 20; ++i)
        ::SendMessageA(host.window.handle(), MM_WOM_DONE, 1, 2);
    EXPECT_THAT(fakeWave.log, IsEmpty());
    ::SendMessageA(host.window.handle(), MM_WOM_CLOSE, 1, 2);
    EXPECT_THAT(host.events, ElementsAre(L"DonePlay"));
    ::SendMessageA(host.window.handle(), MM_WIM_DATA, 1, 2);
    ::SendMessageA(host.window.handle(), MM_WIM_CLOSE, 1, 2);
    EXPECT_THAT(host.events, ElementsAre(L"DonePlay"));
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, forged_messages_in_mid_play_are_survived) {
    startAndFill();
    for (int i = 0; i < 50; ++i)
        ::SendMessageA(host.window.handle(), MM_WOM_DONE, 0xFFFFFFFF, -1);
    ::SendMessageA(host.window.handle(), MM_WOM_CLOSE, 0, 0);
    dispatchWaitingMessages();
    playOut();
    EXPECT_FALSE(fakeWave.open);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, opening_a_file_in_mid_play_leaves_the_playback_alone) {
    startAndFill();
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    playOut();
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, ten_thousand_rounds_leave_handles_and_memory_as_they_were) {
    script.data = noise(buffer * 2);
    const auto round = [&] {
        ASSERT_EQ(start(), 0);
        dispatchWaitingMessages();
        fakeWave.finishAll();
        dispatchWaitingMessages();
        ASSERT_FALSE(fakeWave.open);
        fakeWave.written.clear();
        fakeWave.log.clear();
        script.log.clear();
        host.events.clear();
        host.progress.clear();
        windowLog.clear();
        stateLog.clear();
        fakeAcm.openings.clear();
        fakeAcm.conversions.clear();
        fakeAcm.measured.clear();
    };
    // A heap may begin to keep blocks of a size in groups after some 2000 of them were allocated,
    // and a group counts whole: it must have begun before.
    for (int i = 0; i < 3000; ++i)
        round();
    const std::size_t bytesBefore = countHeapBytes();
    const int handlesBefore = countKernelHandles();
    const int windowsBefore = countWindows();
    const int gdiBefore = countGdiObjects();
    for (int i = 0; i < 10000; ++i)
        round();
    EXPECT_GT(handlesBefore, 0);
    EXPECT_EQ(countKernelHandles(), handlesBefore);
    EXPECT_EQ(countWindows(), windowsBefore);
    EXPECT_EQ(countGdiObjects(), gdiBefore);
    EXPECT_LT(countHeapBytes(), bytesBefore + 16 * 1024);
}

// A file of 2.7 seconds, which the converter takes in pieces of half a second. The last piece is
// short enough to be cut, so that the converter meets the end with it.
class Seeking : public Playback {
protected:
    static constexpr std::size_t second = 176400;

    // Starts, and plays until the file was read up to that second, rounded half to even.
    void playUntilRead(std::int32_t position) {
        ASSERT_EQ(player.init(), 0);
        ASSERT_EQ(player.player.PlayStart(song, -1, 0), 0);
        dispatchWaitingMessages();
        while (player.player.PositionGet() < position && fakeWave.finishOne())
            dispatchWaitingMessages();
        ASSERT_EQ(player.player.PositionGet(), position);
    }
    // Plays to the end; what was played, without what fills up the last block.
    Bytes playToTheEnd(std::size_t expected) {
        playOut();
        EXPECT_EQ(player.events, endOfPlayback);
        EXPECT_EQ(fakeWave.written.size(), (expected + buffer - 1) / buffer * buffer);
        fakeWave.written.resize(std::min(fakeWave.written.size(), expected));
        return fakeWave.written;
    }

    const Bytes sound = noise(second * 27 / 10);
    const std::wstring song = folder.write(L"song.wav", plainWav(pcm(44100, 2, 16), sound));
    BarePlayer player{{fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeSources}};
};

TEST_F(Seeking, goes_on_at_the_new_place_behind_what_the_converter_holds) {
    playUntilRead(2);
    EXPECT_EQ(player.player.PositionSet(1), 0);
    EXPECT_EQ(player.player.PositionGet(), 1);
    Bytes expected(sound.begin(), sound.begin() + second * 3 / 2);
    expected.insert(expected.end(), sound.begin() + second, sound.end());
    EXPECT_TRUE(playToTheEnd(expected.size()) == expected);
}

TEST_F(Seeking, after_the_converter_has_met_the_end_moves_the_position_but_the_file_still_ends) {
    playUntilRead(3);
    ASSERT_LT(fakeWave.written.size() + 2 * buffer, sound.size()) << "the end is still to be fed";
    EXPECT_EQ(player.player.PositionSet(1), 0);
    EXPECT_EQ(player.player.PositionGet(), 1);
    EXPECT_TRUE(playToTheEnd(sound.size()) == sound);
}

} // namespace
} // namespace corvina::test
