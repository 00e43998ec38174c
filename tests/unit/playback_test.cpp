// The playback engine: the calls it makes of the device and their order.

#include "PlaybackFixture.h"
#include "support/ProcessObjects.h"

namespace corvina::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::StartsWith;

std::vector<std::string> numbered(const char* call, int count) {
    std::vector<std::string> calls;
    for (int i = 0; i < count; ++i)
        calls.push_back(std::string(call).append(" ").append(std::to_string(i)));
    return calls;
}

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

using Calls = std::vector<std::string>;

TEST_F(Playback, starting_opens_the_device_and_prepares_eight_buffers) {
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(takeLog(), Calls{"Open"} + numbered("Prepare", 8));
}

TEST_F(Playback, starting_posts_eight_messages_to_fill_the_ring) {
    windowLog.clear();
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(std::count(windowLog.begin(), windowLog.end(), "Post 957"), 8);
    EXPECT_EQ(fakeWave.writes, 0);
}

TEST_F(Playback, the_first_eight_messages_fill_the_buffers_in_order) {
    ASSERT_EQ(start(), 0);
    takeLog();
    dispatchWaitingMessages();
    Calls expected;
    for (const char* index : {"0", "1", "2", "3", "4", "5", "6", "7"})
        for (const char* call : {"Unprepare ", "Prepare ", "Write "})
            expected.push_back(std::string(call).append(index));
    EXPECT_EQ(takeLog(), expected);
}

TEST_F(Playback, each_buffer_that_comes_back_is_refilled_in_its_turn) {
    startAndFill();
    takeLog();
    fakeWave.finishOne();
    fakeWave.finishOne();
    dispatchWaitingMessages();
    EXPECT_THAT(takeLog(), ElementsAre("Unprepare 0", "Prepare 0", "Write 0", "Unprepare 1",
                                       "Prepare 1", "Write 1"));
}

TEST_F(Playback, after_the_last_buffer_the_ring_begins_again) {
    startAndFill();
    for (int i = 0; i < 8; ++i)
        fakeWave.finishOne();
    dispatchWaitingMessages();
    takeLog();
    fakeWave.finishOne();
    dispatchWaitingMessages();
    EXPECT_THAT(takeLog(), ElementsAre("Unprepare 0", "Prepare 0", "Write 0"));
}

TEST_F(Playback, every_byte_of_the_source_reaches_the_device_in_order) {
    script.data = noise(buffer * 37 + 1234);
    startAndFill();
    playOut();
    ASSERT_EQ(fakeWave.written.size() % buffer, 0u);
    ASSERT_GE(fakeWave.written.size(), script.data.size());
    fakeWave.written.resize(script.data.size());
    EXPECT_TRUE(fakeWave.written == script.data);
}

TEST_F(Playback, no_sample_is_lost_at_the_end_whatever_the_length) {
    // Around one ring buffer, one half-second conversion, and half of that.
    for (const std::size_t length : {4u, 7996u, 8000u, 8004u, 16000u, 44096u, 44100u, 44104u,
                                     88196u, 88200u, 88204u, 132300u, 176400u, 200000u}) {
        SCOPED_TRACE(length);
        script.data = noise(length, static_cast<std::uint32_t>(length));
        fakeWave.written.clear();
        ASSERT_EQ(start(), 0);
        dispatchWaitingMessages();
        playOut();
        EXPECT_EQ(fakeWave.written.size(), (length + buffer - 1) / buffer * buffer)
            << "and nothing but the rest of the last buffer is added";
        ASSERT_GE(fakeWave.written.size(), length);
        EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    }
}

TEST_F(Playback, the_last_buffer_is_written_whole_with_what_it_held_before) {
    script.data = noise(buffer * 9 + 4000);
    startAndFill();
    playOut();
    ASSERT_GE(fakeWave.writes, 10);
    const auto at = [](std::size_t offset) {
        return fakeWave.written.begin() + static_cast<std::ptrdiff_t>(offset);
    };
    // The tenth block went into buffer 1, which held the second before.
    EXPECT_TRUE(std::equal(at(9 * buffer + 4000), at(10 * buffer), at(buffer + 4000)));
}

TEST_F(Playback, the_wave_mapper_is_opened_without_mapping) {
    ASSERT_EQ(start(-1), 0);
    EXPECT_EQ(fakeWave.device, WAVE_MAPPER);
    EXPECT_EQ(fakeWave.flags, DWORD{CALLBACK_WINDOW});
}

TEST_F(Playback, a_device_by_number_is_opened_with_mapping) {
    ASSERT_EQ(start(0), 0);
    EXPECT_EQ(fakeWave.device, 0u);
    EXPECT_EQ(fakeWave.flags, DWORD{CALLBACK_WINDOW | WAVE_MAPPED});
}

TEST_F(Playback, any_device_number_is_passed_on) {
    for (const std::int32_t device : {7, INT32_MAX, INT32_MIN}) {
        ASSERT_EQ(start(device), 0);
        EXPECT_EQ(fakeWave.device, static_cast<UINT>(device));
        host.player.PlayStop();
        dispatchWaitingMessages();
    }
}

TEST_F(Playback, the_device_notifies_the_controls_window) {
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(fakeWave.window, host.window.handle());
}

TEST_F(Playback, the_requested_buffer_size_has_no_effect) {
    for (const std::int32_t size : {65536, 0, -1, INT32_MAX, INT32_MIN}) {
        fakeWave.written.clear();
        ASSERT_EQ(host.player.PlayStart(file, -1, size), 0);
        dispatchWaitingMessages();
        EXPECT_EQ(fakeWave.written.size(), 8 * buffer);
        host.player.PlayStop();
        dispatchWaitingMessages();
    }
}

TEST_F(Playback, the_device_gets_the_converters_shape_with_the_sources_block_and_rate) {
    script.format = pcm(22050, 2, 24);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(fakeWave.format.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 22050u);
    EXPECT_EQ(fakeWave.format.nChannels, 2);
    EXPECT_EQ(fakeWave.format.wBitsPerSample, 16);
    EXPECT_EQ(fakeWave.format.nBlockAlign, 6);
    EXPECT_EQ(fakeWave.format.nAvgBytesPerSec, 6u * 22050u);
    EXPECT_EQ(fakeWave.format.cbSize, 0);
}

TEST_F(Playback, a_playback_that_ends_raises_one_reset_failure_and_then_DonePlay) {
    startAndFill();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(Playback, the_end_unprepares_the_ninth_record_eight_times_and_closes) {
    script.data = noise(100);
    ASSERT_EQ(start(), 0);
    dispatchWaitingMessages();
    takeLog();
    playOut();
    // The ninth record's dwUser is 0, as nobody ever set it up.
    EXPECT_EQ(takeLog(), Calls(8, "Unprepare 0") + Calls({"Close", "Reset"}));
    EXPECT_EQ(fakeWave.prepared.size(), 8u) << "the eight buffers stay prepared";
}

TEST_F(Playback, a_source_shorter_than_a_buffer_is_heard_and_ends) {
    script.data = noise(100);
    ASSERT_EQ(start(), 0);
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.writes, 1);
    playOut();
    EXPECT_EQ(fakeWave.writes, 1);
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, an_empty_source_ends) {
    script.data.clear();
    startAndFill();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(Playback, the_states_follow_the_device) {
    EXPECT_TRUE(host.player.DonePlay());
    EXPECT_FALSE(host.player.IsPlaying());
    startAndFill();
    EXPECT_FALSE(host.player.DonePlay());
    EXPECT_TRUE(host.player.IsPlaying());
    bool doneInHandler = false;
    host.onDonePlay = [&] { doneInHandler = host.player.DonePlay(); };
    playOut();
    EXPECT_TRUE(doneInHandler);
    EXPECT_TRUE(host.player.DonePlay());
    EXPECT_FALSE(host.player.IsPlaying());
}

TEST_F(Playback, starting_while_playing_answers_minus_201_and_leaves_the_playback_alone) {
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

TEST_F(Playback, starting_while_the_buffers_come_back_answers_minus_201) {
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

TEST_F(Playback, stopping_when_nothing_plays_answers_0_and_raises_nothing) {
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

TEST_F(Playback, pausing_when_nothing_plays_answers_the_devices_refusal) {
    EXPECT_EQ(host.player.PlayPause(), MMSYSERR_INVALHANDLE);
    EXPECT_EQ(host.player.PlayUnPause(), MMSYSERR_INVALHANDLE);
    EXPECT_FALSE(host.player.IsPausedOut());
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
    // Handle the returned buffers, but not the close message yet.
    MSG message;
    while (::PeekMessageA(&message, nullptr, MM_WOM_DONE, MM_WOM_DONE, PM_REMOVE))
        ::DispatchMessageA(&message);
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

TEST_F(Playback, an_impossible_conversion_answers_5_and_does_not_open_the_device) {
    fakeAcm.refusedBits = {8, 16};
    EXPECT_EQ(start(), 5);
    EXPECT_THAT(host.events, ElementsAre(L"InitConversion|5|Can't init conversion"));
    EXPECT_THAT(fakeWave.log, IsEmpty());
    fakeAcm.refusedBits.clear();
    expectTheNextPlaybackWorks();
}

TEST_F(Playback, a_block_that_does_not_fit_its_field_raises_overflow) {
    script.format.nChannels = 32767;
    script.format.wBitsPerSample = 32;
    try {
        static_cast<void>(start());
        ADD_FAILURE();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 6);
    }
    EXPECT_FALSE(host.player.IsPlaying());
    script.format = pcm(44100, 2, 16);
    expectTheNextPlaybackWorks();
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

TEST_F(Playback, opening_a_file_in_mid_play_ends_the_playback_with_what_was_read) {
    startAndFill();
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    playOut();
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
        windowLog.clear();
        fakeAcm.openings.clear();
        fakeAcm.conversions.clear();
        fakeAcm.measured.clear();
    };
    for (int i = 0; i < 100; ++i)
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

} // namespace
} // namespace corvina::test
