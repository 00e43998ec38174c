// The playback engine: the calls it makes of the device and their order, from the start to the end
// of the source.

#include "PlaybackFixture.h"
#include "support/SampleObserver.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> numbered(const char* call, int count) {
    std::vector<std::string> calls;
    calls.reserve(static_cast<std::size_t>(count));
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

TEST_F(Playback, a_file_that_cannot_be_reached_shows_no_box_and_the_host_keeps_its_boxes) {
    const DWORD before = ::GetThreadErrorMode();
    startAndFill();
    host.player.PositionSet(1);
    EXPECT_THAT(script.errorModes,
                ElementsAre(before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
    DWORD inEvents = ~before;
    host.onDonePlay = [&inEvents] { inEvents = ::GetThreadErrorMode(); };
    host.player.PlayStop();
    playOut();
    EXPECT_EQ(inEvents, before);
    EXPECT_EQ(::GetThreadErrorMode(), before);
}

TEST_F(Playback, starting_posts_eight_messages_to_fill_the_ring) {
    windowLog.clear();
    ASSERT_EQ(start(), 0);
    const auto first = std::find_if(fakeWave.prepared.begin(), fakeWave.prepared.end(),
                                    [](const WAVEHDR* header) { return header->dwUser == 0; });
    ASSERT_NE(first, fakeWave.prepared.end());
    const std::string post =
        "Post 957 0 " + std::to_string(reinterpret_cast<std::intptr_t>(*first));
    EXPECT_EQ(windowLog, Calls(8, post));
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

TEST_F(Playback, the_next_playback_begins_with_the_first_buffer_again) {
    startAndFill();
    for (int i = 0; i < 3; ++i)
        fakeWave.finishOne();
    dispatchWaitingMessages();
    host.player.PlayStop();
    dispatchWaitingMessages();
    ASSERT_FALSE(fakeWave.open);
    takeLog();
    startAndFill();
    const Calls calls = takeLog();
    const auto firstWrite = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
        return call.starts_with("Write");
    });
    ASSERT_NE(firstWrite, calls.end());
    EXPECT_EQ(*firstWrite, "Write 0");
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

TEST_F(Playback, the_players_observer_is_shown_what_is_converted) {
    SampleObserver observer;
    BarePlayer watched{fakePlatform(), &observer};
    ASSERT_EQ(watched.init(), 0);
    ASSERT_EQ(watched.player.PlayStart(file, -1, 0), 0);
    dispatchWaitingMessages();
    ASSERT_FALSE(observer.blocks.empty());
    const Bytes& shown = observer.blocks[0].content;
    EXPECT_EQ(shown.size(), 88200u) << "half a second";
    EXPECT_TRUE(std::equal(shown.begin(), shown.end(), script.data.begin()));
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

TEST_F(Playback, the_device_is_opened_with_no_instance_data) {
    fakeWave.instance = 1;
    start();
    EXPECT_EQ(fakeWave.instance, 0u);
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

TEST_F(Playback, a_source_of_8_bits_is_played_in_8) {
    script.format = pcm(8000, 1, 8);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(fakeWave.format.wBitsPerSample, 8);
}

TEST_F(Playback, a_source_of_16_bits_is_played_in_8_if_no_codec_makes_16) {
    fakeAcm.refusedBits = {16};
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(fakeWave.format.wBitsPerSample, 8);
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

TEST_F(Playback, an_impossible_conversion_returns_5_and_does_not_open_the_device) {
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

} // namespace
} // namespace corvina::test
