// The life of the player: Init and DeInit in any order, and its end in any state.

#include "PlaybackFixture.h"
#include "subclass/MSubclass.h"
#include "support/ErrorNumber.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PlayerLife : public Playback {
protected:
    // A host of its own, on which Init was not called.
    BarePlayer untouched{fakePlatform()};
};

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

TEST_F(PlayerLife, Init_attaches_the_four_wave_messages_in_order) {
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

TEST_F(PlayerLife, Init_a_second_time_attaches_nothing_again_but_adds_the_sources_again) {
    // Each attachment is refused because the control is attached already, which is what it wants;
    // the host gets no event of it.
    EXPECT_EQ(script.sources, 1);
    EXPECT_EQ(host.init(), 0);
    EXPECT_EQ(attachmentsOf(host.window.handle()), 4);
    EXPECT_EQ(script.sources, 2);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, Init_in_mid_play_sets_done_and_leaves_the_playback_running) {
    startAndFill();
    EXPECT_EQ(host.init(), 0);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(start(), -201);
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_TRUE(fakeWave.open);
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"DonePlay"));
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, Init_with_no_window_raises_the_subclassing_error) {
    EXPECT_EQ(errorNumberOf([&] { untouched.player.Init(nullptr, untouched.client); }),
              MSubclass::errorBase + 13083);
    EXPECT_EQ(untouched.init(), 0) << "and can be called again";
}

TEST_F(PlayerLife, the_codecs_stay_loaded_from_Init_to_DeInit) {
    const int ofOthers = fakeAcm.openDrivers;
    ASSERT_EQ(untouched.init(), 0);
    ASSERT_EQ(untouched.init(), 0);
    EXPECT_EQ(fakeAcm.openDrivers, ofOthers + 2);
    untouched.player.DeInit();
    EXPECT_EQ(fakeAcm.openDrivers, ofOthers);
}

TEST_F(PlayerLife, the_codecs_are_let_go_by_a_player_that_dies_without_DeInit) {
    const int ofOthers = fakeAcm.openDrivers;
    {
        BarePlayer brief(fakePlatform());
        ASSERT_EQ(brief.init(), 0);
        EXPECT_EQ(fakeAcm.openDrivers, ofOthers + 2);
    }
    EXPECT_EQ(fakeAcm.openDrivers, ofOthers);
}

TEST_F(PlayerLife, Init_on_another_window_moves_there) {
    HiddenWindow next;
    EXPECT_EQ(host.player.Init(next.handle(), host.client), 0);
    EXPECT_EQ(attachmentsOf(host.window.handle()), 0);
    EXPECT_EQ(attachmentsOf(next.handle()), 4);
    expectTheNextPlaybackWorks();
    host.player.shutdown();
}

TEST_F(PlayerLife, Init_on_a_window_that_has_outlived_its_WM_DESTROY_plays_again) {
    startAndFill();
    ::SendMessageA(host.window.handle(), WM_DESTROY, 0, 0);
    ASSERT_TRUE(fakeWave.open) << "nobody hears of its blocks any more";
    EXPECT_EQ(host.init(), 0);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_EQ(attachmentsOf(host.window.handle()), 4);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, DeInit_detaches_the_output_messages_and_keeps_those_of_input) {
    EXPECT_EQ(host.player.DeInit(), 0);
    const HWND window = host.window.handle();
    EXPECT_FALSE(isAttached(window, MM_WOM_DONE));
    EXPECT_FALSE(isAttached(window, MM_WOM_CLOSE));
    EXPECT_TRUE(isAttached(window, MM_WIM_DATA));
    EXPECT_TRUE(isAttached(window, MM_WIM_CLOSE));
}

TEST_F(PlayerLife, DeInit_stops_before_it_detaches) {
    startAndFill();
    fakeWave.log.clear();
    std::vector<std::string> before;
    script.onClose = [&] {
        if (before.empty()) {
            before = fakeWave.log;
            EXPECT_TRUE(fakeWave.open);
            EXPECT_TRUE(isAttached(host.window.handle(), MM_WOM_DONE));
            EXPECT_TRUE(isAttached(host.window.handle(), MM_WOM_CLOSE));
        }
    };
    EXPECT_EQ(host.player.DeInit(), 0);
    script.onClose = nullptr;
    EXPECT_THAT(before, ElementsAre("Reset"));
}

TEST_F(PlayerLife, DeInit_detaches_957_before_956) {
    MSubclass::useWindowApi(&faultyWindowApi);
    windowLog.clear();
    EXPECT_EQ(host.player.DeInit(), 0);
    MSubclass::useWindowApi(nullptr);
    std::vector<std::string> clients;
    for (const std::string& call : windowLog)
        if (call.starts_with("RemoveProp") && call.ends_with("#1"))
            clients.push_back(call.substr(call.find('#')));
    EXPECT_THAT(clients, ElementsAre("#957#1", "#956#1"));
}

TEST_F(PlayerLife, DeInit_closes_the_opened_file_and_keeps_the_sources) {
    host.player.OpenAudioFile(file);
    script.log.clear();
    host.player.DeInit();
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(host.player.Info_Bitrate()); }), 91);
    EXPECT_EQ(script.sources, 1);
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
}

TEST_F(PlayerLife, DeInit_in_mid_play_closes_the_device_at_once_without_DonePlay) {
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

TEST_F(PlayerLife,
       what_a_playback_left_in_the_queue_does_not_disturb_the_one_after_DeInit_and_Init) {
    startAndFill();
    host.player.PlayStop();
    host.player.DeInit();
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, DeInit_in_mid_play_ends_everything_even_if_the_source_throws) {
    startAndFill();
    script.onClose = [] { throwOverflow(); };
    EXPECT_EQ(errorNumberOf([&] { host.player.DeInit(); }), 6) << "and the host hears of it";
    EXPECT_FALSE(fakeWave.open);
    EXPECT_EQ(fakeAcm.openStreams, 0);
    EXPECT_EQ(fakeAcm.openDrivers, 0);
    EXPECT_FALSE(isAttached(host.window.handle(), MM_WOM_DONE));
    EXPECT_FALSE(isAttached(host.window.handle(), MM_WOM_CLOSE));
    EXPECT_FALSE(host.player.IsPlaying());
    dispatchWaitingMessages();
    EXPECT_EQ(host.countOf(L"DonePlay"), 0);
    script.onClose = nullptr;
    EXPECT_EQ(host.init(), 0);
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, DeInit_closes_what_was_to_play_next_even_if_the_first_source_throws) {
    const std::wstring next = folder.write(L"next.test", {0});
    script.otherData[L"next.test"] = noise(buffer * 4);
    script.data = noise(buffer * 3);
    host.player.settings().options().nextFile = next;
    startAndFill();
    script.log.clear();
    int closes = 0;
    script.onClose = [&] {
        if (++closes == 1)
            throwOverflow();
    };
    EXPECT_EQ(errorNumberOf([&] { host.player.DeInit(); }), 6);
    EXPECT_GE(closes, 2) << "the second source is closed too";
    EXPECT_EQ(fakeAcm.openStreams, 0);
}

TEST_F(PlayerLife, DeInit_twice_and_before_Init_returns_0) {
    EXPECT_EQ(untouched.player.DeInit(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
}

TEST_F(PlayerLife, PlayStart_after_DeInit_is_refused_because_no_message_would_arrive) {
    host.player.DeInit();
    EXPECT_EQ(start(), MMSYSERR_INVALPARAM);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(fakeWave.opens, 0);
    host.init();
    expectTheNextPlaybackWorks();
}

TEST_F(PlayerLife, calls_before_Init_return) {
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

TEST_F(PlayerLife, shutdown_in_mid_play_closes_the_device_and_detaches_everything) {
    startAndFill();
    fakeWave.log.clear();
    script.log.clear();
    host.player.shutdown();
    EXPECT_THAT(fakeWave.log,
                ElementsAre("Reset", "Unprepare 0", "Unprepare 1", "Unprepare 2", "Unprepare 3",
                            "Unprepare 4", "Unprepare 5", "Unprepare 6", "Unprepare 7", "Close"));
    EXPECT_THAT(script.log, ElementsAre(L"Close"));
    EXPECT_EQ(attachmentsOf(host.window.handle()), 0);
    EXPECT_EQ(fakeAcm.openStreams, 0);
    dispatchWaitingMessages();
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(PlayerLife, destruction_in_any_state_leaves_no_device_and_no_source) {
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

TEST_F(PlayerLife, a_window_destroyed_in_mid_play_ends_the_playback) {
    startAndFill();
    host.window.destroy();
    host.player.windowDestroyed();
    EXPECT_FALSE(fakeWave.open);
    EXPECT_FALSE(host.player.IsPlaying());
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(start(), MMSYSERR_INVALPARAM);
    HiddenWindow next;
    EXPECT_EQ(host.player.Init(next.handle(), host.client), 0);
    expectTheNextPlaybackWorks();
    host.player.shutdown();
}

TEST_F(PlayerLife, a_window_destroyed_without_a_word_leaves_the_player_usable) {
    startAndFill();
    host.window.destroy();
    EXPECT_TRUE(host.player.IsPlaying());
    EXPECT_EQ(host.player.PlayStop(), 0);
    EXPECT_EQ(host.player.DeInit(), 0);
    EXPECT_FALSE(fakeWave.open);
}

} // namespace
} // namespace corvina::test
