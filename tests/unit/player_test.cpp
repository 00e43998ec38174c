// The player: opening files, what it tells about them, and the calls in any order.

#include "PlaybackFixture.h"
#include "sources/DecWAV.h"
#include "subclass/MSubclass.h"
#include "support/ErrorNumber.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PlayerTest : public Playback {
protected:
    // A host of its own, on which Init was not called.
    BarePlayer untouched{fakePlatform()};
};

// ---------------------------------------------------------------- opening

TEST_F(PlayerTest, a_file_is_opened_by_the_source_of_its_extension) {
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test"));
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(PlayerTest, a_missing_file_answers_1) {
    EXPECT_EQ(host.player.OpenAudioFile(folder.path() + L"\\no.test"), 1);
    EXPECT_THAT(host.events, ElementsAre(L"|1|File doen't exist"));
    EXPECT_THAT(script.log, IsEmpty());
}

TEST_F(PlayerTest, a_missing_file_leaves_the_opened_one_open) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(L"no such file");
    EXPECT_EQ(host.player.Info_Samplerate(), 44100);
}

TEST_F(PlayerTest, an_unknown_format_answers_2_and_raises_the_number_1) {
    EXPECT_EQ(host.player.OpenAudioFile(folder.write(L"song.xyz", {0})), 2);
    EXPECT_THAT(host.events, ElementsAre(L"|1|Format not supported"));
}

TEST_F(PlayerTest, a_file_that_cannot_be_opened_answers_3_and_raises_the_number_1) {
    script.openResult = 4;
    EXPECT_EQ(host.player.OpenAudioFile(file), 3);
    EXPECT_THAT(host.events, ElementsAre(L"|1|Could not open file"));
    EXPECT_EQ(host.player.Info_Samplerate(), 44100) << "its source stays the current one";
}

TEST_F(PlayerTest, opening_closes_the_file_before) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(folder.write(L"next.test", {0}));
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test", L"Close", L"Open next.test"));
}

TEST_F(PlayerTest, an_unknown_format_closes_the_file_before_and_leaves_none_open) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(folder.write(L"song.xyz", {0}));
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test", L"Close"));
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(host.player.Info_Bitrate()); }), 91);
}

TEST_F(PlayerTest, PlayStart_passes_the_result_of_opening_on_without_a_second_event) {
    EXPECT_EQ(host.player.PlayStart(L"missing.test", -1, 0), 1);
    EXPECT_EQ(host.player.PlayStart(folder.write(L"song.xyz", {0}), -1, 0), 2);
    script.openResult = 1;
    EXPECT_EQ(start(), 3);
    EXPECT_THAT(host.events, ElementsAre(L"|1|File doen't exist", L"|1|Format not supported",
                                         L"|1|Could not open file"));
    EXPECT_THAT(fakeWave.log, IsEmpty());
    EXPECT_FALSE(host.player.IsPlaying());
}

TEST_F(PlayerTest, hostile_names_find_no_file) {
    const std::wstring names[] = {L"",
                                  std::wstring(1, L'\0'),
                                  file + std::wstring(1, L'\0') + L"x",
                                  std::wstring(259, L'a'),
                                  std::wstring(260, L'a'),
                                  std::wstring(261, L'a'),
                                  std::wstring(32768, L'a'),
                                  folder.path(),
                                  folder.path() + L"\\",
                                  L"\x4e2d\x6587.test"};
    for (const std::wstring& name : names)
        EXPECT_EQ(host.player.PlayStart(name, -1, 0), 1) << name.size();
}

TEST_F(PlayerTest, a_real_wav_file_is_opened_and_described) {
    BarePlayer real({fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeSources});
    ASSERT_EQ(real.init(), 0);
    const auto format = pcm(22050, 1, 16);
    const std::wstring wav = folder.write(L"a.WAV", plainWav(format, noise(22050)));
    ASSERT_EQ(real.player.OpenAudioFile(wav), 0);
    EXPECT_EQ(real.player.Info_Samplerate(), 22050);
    EXPECT_EQ(real.player.Info_Channels(), 1);
    EXPECT_EQ(real.player.Info_BitsPerSample(), 16);
    EXPECT_EQ(real.player.Info_Bitrate(), 22050 * 16);
    EXPECT_DOUBLE_EQ(real.player.Info_Duration(), 0.5);
}

// ---------------------------------------------------------------- information

TEST_F(PlayerTest, information_without_an_opened_file_raises_91) {
    const Player& player = host.player;
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Bitrate()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_BitsPerSample()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Channels()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Duration()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Samplerate()); }), 91);
}

TEST_F(PlayerTest, the_duration_is_in_seconds_with_fraction) {
    script.durationMs = 1234;
    host.player.OpenAudioFile(file);
    EXPECT_DOUBLE_EQ(host.player.Info_Duration(), 1.234);
}

TEST_F(PlayerTest, tags_without_an_opened_file_raise_91_and_clear_the_texts) {
    host.player.Tags().title = L"old";
    EXPECT_EQ(errorNumberOf([&] { host.player.GetID3Tags(L"song.ogg"); }), 91);
    EXPECT_EQ(host.player.Tags().title, L"");
}

TEST_F(PlayerTest, tags_are_those_of_the_opened_file_under_the_names_of_the_given_one) {
    script.tags = {{L"Title", L"the title"}, {L"description", L"the comment"}};
    BarePlayer tagged(fakePlatform());
    tagged.init();
    tagged.player.OpenAudioFile(file);
    EXPECT_EQ(tagged.player.GetID3Tags(L"nothing of that name.ogg"), 0);
    EXPECT_EQ(tagged.player.Tags().title, L"the title");
    EXPECT_EQ(tagged.player.Tags().comment, L"the comment");
    EXPECT_EQ(tagged.player.GetID3Tags(L"song.flac"), 0);
    EXPECT_EQ(tagged.player.Tags().title, L"");
}

// ---------------------------------------------------------------- position

TEST_F(PlayerTest, the_position_is_0_without_an_opened_file) {
    EXPECT_EQ(host.player.PositionGet(), 0);
    EXPECT_EQ(host.player.PositionSet(5), 0);
    EXPECT_THAT(script.log, IsEmpty());
}

TEST_F(PlayerTest, the_position_is_rounded_to_whole_seconds_ties_to_even) {
    host.player.OpenAudioFile(file);
    const std::pair<std::int32_t, std::int32_t> cases[] = {
        {0, 0},    {499, 0},  {500, 0},  {501, 1},
        {1500, 2}, {2500, 2}, {2501, 3}, {INT32_MAX, 2147484}};
    for (const auto& [milliseconds, seconds] : cases) {
        script.positionMs = milliseconds;
        EXPECT_EQ(host.player.PositionGet(), seconds) << milliseconds;
    }
}

TEST_F(PlayerTest, seeking_goes_to_whole_seconds) {
    host.player.OpenAudioFile(file);
    script.log.clear();
    for (const std::int32_t value : {3, 0, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(host.player.PositionSet(value), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Seek 3 1", L"Seek 0 1", L"Seek -1 1",
                                        L"Seek 2147483647 1", L"Seek -2147483648 1"));
}

TEST_F(PlayerTest, seeking_out_of_range_answers_0) {
    script.seekResult = SourceResult::outOfRange;
    host.player.OpenAudioFile(file);
    EXPECT_EQ(host.player.PositionSet(1000), 0);
    EXPECT_THAT(host.events, IsEmpty());
}

// ---------------------------------------------------------------- Init and DeInit

int attachmentsOf(HWND window) {
    const std::string name = std::string("C").append(
        std::to_string(static_cast<int>(reinterpret_cast<LONG_PTR>(window))));
    return static_cast<int>(reinterpret_cast<LONG_PTR>(::GetPropA(window, name.c_str())));
}

bool isAttached(HWND window, std::int32_t message) {
    const std::string handle = std::to_string(static_cast<int>(reinterpret_cast<LONG_PTR>(window)));
    const std::string name =
        std::string(handle).append("#").append(std::to_string(message)).append("#1");
    return ::GetPropA(window, name.c_str()) != nullptr;
}

TEST_F(PlayerTest, Init_attaches_the_four_wave_messages_in_order) {
    MSubclass::useWindowApi(&faultyWindowApi);
    windowLog.clear();
    untouched.init();
    MSubclass::useWindowApi(nullptr);
    std::vector<std::string> clients;
    for (const std::string& call : windowLog)
        if (call.ends_with("#1"))
            clients.push_back(call.substr(call.find('#')));
    EXPECT_THAT(clients, ElementsAre("#957#1", "#956#1", "#960#1", "#959#1"));
}

TEST_F(PlayerTest, Init_a_second_time_attaches_nothing_again_but_adds_the_sources_again) {
    // Each attachment is refused because the control is attached already, which is what it wants;
    // the host is told nothing of it.
    EXPECT_EQ(script.sources, 1);
    EXPECT_EQ(host.init(), 0);
    EXPECT_EQ(attachmentsOf(host.window.handle()), 4);
    EXPECT_EQ(script.sources, 2);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, Init_in_mid_play_leaves_the_playback_running) {
    startAndFill();
    EXPECT_EQ(host.init(), 0);
    EXPECT_TRUE(host.player.IsPlaying());
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(PlayerTest, Init_with_no_window_raises_the_subclassing_error) {
    EXPECT_EQ(errorNumberOf([&] { untouched.player.Init(nullptr, untouched.client); }),
              MSubclass::errorBase + 13083);
    EXPECT_EQ(untouched.init(), 0) << "and can be called again";
}

TEST_F(PlayerTest, Init_on_another_window_moves_there) {
    HiddenWindow next;
    EXPECT_EQ(host.player.Init(next.handle(), host.client), 0);
    EXPECT_EQ(attachmentsOf(host.window.handle()), 0);
    EXPECT_EQ(attachmentsOf(next.handle()), 4);
    expectTheNextPlaybackWorks();
    host.player.Shutdown();
}

TEST_F(PlayerTest, DeInit_detaches_the_output_messages_and_keeps_those_of_input) {
    EXPECT_EQ(host.player.DeInit(), 0);
    const HWND window = host.window.handle();
    EXPECT_FALSE(isAttached(window, MM_WOM_DONE));
    EXPECT_FALSE(isAttached(window, MM_WOM_CLOSE));
    EXPECT_TRUE(isAttached(window, MM_WIM_DATA));
    EXPECT_TRUE(isAttached(window, MM_WIM_CLOSE));
}

TEST_F(PlayerTest, DeInit_closes_the_opened_file_and_keeps_the_sources) {
    host.player.OpenAudioFile(file);
    script.log.clear();
    host.player.DeInit();
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(host.player.Info_Bitrate()); }), 91);
    EXPECT_EQ(script.sources, 1);
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
}

TEST_F(PlayerTest, DeInit_in_mid_play_closes_the_device_at_once_without_DonePlay) {
    startAndFill();
    fakeWave.log.clear();
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_EQ(fakeWave.prepared.size(), 0u);
    EXPECT_FALSE(host.player.IsPlaying());
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, IsEmpty());
    EXPECT_EQ(host.init(), 0);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest,
       what_a_playback_left_in_the_queue_does_not_disturb_the_one_after_DeInit_and_Init) {
    startAndFill();
    host.player.PlayStop();
    host.player.DeInit();
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, DeInit_twice_and_before_Init_answers_0) {
    EXPECT_EQ(untouched.player.DeInit(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
}

TEST_F(PlayerTest, PlayStart_after_DeInit_is_refused_because_no_message_would_arrive) {
    host.player.DeInit();
    EXPECT_EQ(start(), MMSYSERR_INVALPARAM);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(fakeWave.opens, 0);
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, calls_before_Init_are_answered) {
    Player& player = untouched.player;
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_TRUE(player.DonePlay());
    EXPECT_FALSE(player.IsPausedOut());
    EXPECT_EQ(player.PlayStop(), 0);
    EXPECT_EQ(player.PlayPause(), MMSYSERR_INVALHANDLE);
    EXPECT_EQ(player.PlayUnPause(), MMSYSERR_INVALHANDLE);
    EXPECT_EQ(player.OpenAudioFile(file), 2) << "there are no sources yet";
    EXPECT_EQ(player.PlayStart(file, -1, 0), 2);
    EXPECT_EQ(player.PositionGet(), 0);
    EXPECT_EQ(player.PositionSet(1), 0);
    EXPECT_EQ(player.AudioDataOut(), 0);
    EXPECT_EQ(player.GetSecondsAsTimeString(59), L"0:00:59");
    EXPECT_EQ(player.ErrorTextOut(-101), L"Error opening file");
}

// ---------------------------------------------------------------- the end of the control

TEST_F(PlayerTest, Shutdown_in_mid_play_closes_the_device_and_detaches_everything) {
    startAndFill();
    fakeWave.log.clear();
    script.log.clear();
    host.player.Shutdown();
    EXPECT_THAT(fakeWave.log,
                ElementsAre("Reset", "Unprepare 0", "Unprepare 1", "Unprepare 2", "Unprepare 3",
                            "Unprepare 4", "Unprepare 5", "Unprepare 6", "Unprepare 7", "Close"));
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(attachmentsOf(host.window.handle()), 0);
    EXPECT_EQ(fakeAcm.openStreams, 0);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(PlayerTest, destruction_in_any_state_leaves_no_device_and_no_source) {
    for (int state = 0; state < 6; ++state) {
        fakeWave.reset();
        {
            BarePlayer victim(fakePlatform());
            if (state > 0)
                victim.init();
            if (state > 1)
                victim.player.PlayStart(file, -1, 0);
            if (state > 2)
                dispatchWaitingMessages();
            if (state > 3)
                victim.player.PlayPause();
            if (state > 4)
                victim.player.PlayStop();
        }
        dispatchWaitingMessages();
        EXPECT_FALSE(fakeWave.open) << state;
        EXPECT_EQ(script.sources, 1) << state << ": that of the fixture's own player";
        EXPECT_EQ(fakeAcm.openStreams, 0) << state;
    }
}

TEST_F(PlayerTest, a_window_destroyed_in_mid_play_ends_the_playback) {
    startAndFill();
    host.window.destroy();
    host.player.WindowDestroyed();
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(start(), MMSYSERR_INVALPARAM);
    HiddenWindow next;
    EXPECT_EQ(host.player.Init(next.handle(), host.client), 0);
    expectTheNextPlaybackWorks();
    host.player.Shutdown();
}

TEST_F(PlayerTest, a_window_destroyed_without_a_word_leaves_the_player_usable) {
    startAndFill();
    host.window.destroy();
    EXPECT_TRUE(host.player.IsPlaying());
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_FALSE(fakeWave.open);
}

// ---------------------------------------------------------------- calls from inside events

TEST_F(PlayerTest, PlayStop_in_answer_to_every_Err_ends_as_usual) {
    host.onErr = [&](const std::wstring&) { host.player.PlayStop(); };
    startAndFill();
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, DeInit_in_answer_to_Err_or_DonePlay_is_safe) {
    startAndFill();
    host.onErr = [&](const std::wstring&) { host.player.DeInit(); };
    host.onDonePlay = [&] { host.player.DeInit(); };
    playOut();
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.countOf(L"DonePlay"), 1);
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, PlayStart_in_answer_to_the_Err_before_DonePlay_is_stopped_with_its_playback) {
    bool started = false;
    host.onErr = [&](const std::wstring&) {
        if (!std::exchange(started, true)) {
            EXPECT_EQ(start(), 0);
        }
    };
    startAndFill();
    playOut();
    EXPECT_TRUE(started);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.countOf(L"DonePlay"), 2);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerTest, the_end_of_the_control_inside_Err_or_DonePlay_is_safe) {
    for (const bool inErr : {true, false}) {
        BarePlayer victim(fakePlatform());
        victim.init();
        ASSERT_EQ(victim.player.PlayStart(file, -1, 0), 0);
        const auto end = [&] {
            victim.player.Shutdown();
            victim.window.destroy();
        };
        if (inErr)
            victim.onErr = [&](const std::wstring&) { end(); };
        else
            victim.onDonePlay = end;
        dispatchWaitingMessages();
        victim.player.PlayStop();
        dispatchWaitingMessages();
        EXPECT_FALSE(fakeWave.open);
    }
}

TEST_F(PlayerTest, calls_in_answer_to_a_failed_refill_are_safe) {
    // The buffer that could not be unprepared is in the engine's hands while the handler runs.
    const std::function<void()> calls[] = {
        [&] { host.player.PlayStop(); },
        [&] { host.player.DeInit(); },
        [&] { EXPECT_EQ(start(), -201); },
        [&] {
            host.player.DeInit();
            host.init();
            EXPECT_EQ(start(), 0);
        },
        [&] {
            host.player.DeInit();
            host.init();
            fakeAcm.refusedBits = {8, 16};
            host.onErr = nullptr;
            EXPECT_EQ(start(), 5);
            fakeAcm.refusedBits.clear();
        },
        [&] { host.player.OpenAudioFile(file); },
        [&] { host.player.OpenAudioFile(L"missing"); },
        [&] { dispatchWaitingMessages(); },
        [&] {
            host.player.PlayStop();
            dispatchWaitingMessages();
        },
    };
    for (const char* call : {"waveOutUnprepareHeader", "waveOutPrepareHeader", "waveOutWrite"}) {
        for (std::size_t i = 0; i < std::size(calls); ++i) {
            SCOPED_TRACE(std::string(call).append(" ").append(std::to_string(i)));
            bool called = false;
            host.onErr = [&, i](const std::wstring& function) {
                if (function.starts_with(L"WindowProcOut") && !std::exchange(called, true))
                    calls[i]();
            };
            ASSERT_EQ(start(), 0);
            fakeWave.faults.arm(call, 4);
            dispatchWaitingMessages();
            playOut();
            EXPECT_TRUE(called);
            // A refused write loses its buffer, and with it the end; leaving always helps.
            host.player.DeInit();
            EXPECT_FALSE(fakeWave.open);
            EXPECT_FALSE(host.player.IsPlaying());
            host.init();
            expectTheNextPlaybackWorks();
        }
    }
}

} // namespace
} // namespace corvina::test
