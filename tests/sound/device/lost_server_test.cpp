// The sound server ends while the registered control plays, and is started again.

#include "../../control/Support.h"
#include "OwnSoundServer.h"
#include "support/ExpectRecorded.h"
#include "support/Recording.h"
#include "support/TempFolder.h"

#include <algorithm>

namespace corvina::test {
namespace {

class LostServer : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        if (!server.available())
            GTEST_SKIP() << "the test has no sound server of its own";
        server.start();
        player = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_EQ(S_OK, player->Init(&result));
        ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
    }
    void TearDown() override {
        sink.disconnect();
        if (player)
            player->DeInit(&result);
        player.reset();
        if (server.available())
            server.start();
        ApartmentTest::TearDown();
    }

    long start(const Frames& frames) {
        const std::wstring path =
            folder.write(std::to_wstring(++files) + L".wav", stereoWav(frames));
        const Bstr name(path.c_str());
        long code = -1;
        EXPECT_EQ(S_OK, player->PlayStart(name.get(), -1, 0, &code));
        return code;
    }
    void waitForSound(std::size_t before, std::size_t frames) {
        ASSERT_TRUE(pumpUntil([&] {
            const auto first = recording.soundSince(before);
            return first && recording.now() > *first + frames;
        }));
    }
    // The reasons of all ends so far.
    [[nodiscard]] std::vector<long> ends() const {
        std::vector<long> reasons;
        for (const EventSink::Event& event : sink.received)
            if (event.id == ended)
                reasons.push_back(V_I4(&event.arguments.at(0)));
        return reasons;
    }
    void expectLost() {
        const ULONGLONG begin = ::GetTickCount64();
        EXPECT_TRUE(pumpUntil([&] { return !ends().empty(); }));
        RecordProperty("ms_until_ended", static_cast<int>(::GetTickCount64() - begin));
        EXPECT_EQ(ends(), std::vector<long>{PLAYEND_DEVICE_LOST});
        PlayState state = PLAY_PLAYING;
        EXPECT_EQ(S_OK, player->get_State(&state));
        EXPECT_EQ(state, PLAY_STOPPED);
    }
    // A file is heard to its last sample, with the same control.
    void expectTheNextPlaybackIsHeard() {
        server.start();
        const Frames frames = signal(20123, 5);
        expectRecorded(frames, [&] {
            const std::size_t before = recording.now();
            const std::size_t endsBefore = ends().size();
            EXPECT_EQ(start(frames), 0);
            EXPECT_TRUE(pumpUntil([&] { return ends().size() > endsBefore; }));
            EXPECT_EQ(ends().back(), PLAYEND_FINISHED);
            return recording.listen(before, frames.size(), 5s);
        });
    }

    static constexpr DISPID ended = 3;
    static constexpr std::size_t second = 44100;
    OwnSoundServer server;
    Recording recording;
    TempFolder folder;
    ComPtr<_cPlayer> player;
    EventSink sink{DIID___cPlayer};
    long result = -1;
    int files = 0;
};

TEST_F(LostServer, in_mid_play_ends_the_playback_and_the_next_one_is_heard) {
    const std::size_t before = recording.now();
    ASSERT_EQ(start(signal(10 * second)), 0);
    waitForSound(before, second);
    server.end();
    expectLost();
    expectTheNextPlaybackIsHeard();
}

TEST_F(LostServer, during_a_pause_ends_the_playback_and_the_next_one_is_heard) {
    const std::size_t before = recording.now();
    ASSERT_EQ(start(signal(10 * second)), 0);
    waitForSound(before, second / 2);
    ASSERT_EQ(S_OK, player->PlayPause(&result));
    server.end();
    // Whether the loss shows at once or when the pause ends is the platform's affair.
    if (!pumpUntil([&] { return !ends().empty(); }, 2s)) {
        ASSERT_EQ(S_OK, player->PlayUnPause(&result));
    }
    expectLost();
    expectTheNextPlaybackIsHeard();
}

TEST_F(LostServer, while_the_last_blocks_play_ends_the_playback_and_the_next_one_is_heard) {
    const std::size_t before = recording.now();
    // Eight blocks of 45 ms each are queued ahead, so all of it was read before it is heard.
    ASSERT_EQ(start(signal(second / 4)), 0);
    waitForSound(before, 100);
    server.end();
    EXPECT_TRUE(pumpUntil([&] { return !ends().empty(); }));
    EXPECT_EQ(ends().size(), 1u);
    expectTheNextPlaybackIsHeard();
}

TEST_F(LostServer, at_a_start_is_a_refused_start_or_a_lost_device_and_the_next_playback_is_heard) {
    server.end();
    if (start(signal(second)) == 0) {
        EXPECT_TRUE(pumpUntil([&] { return !ends().empty(); }));
        EXPECT_EQ(ends().size(), 1u);
    } else {
        dispatchWaitingMessages();
        EXPECT_TRUE(ends().empty());
    }
    expectTheNextPlaybackIsHeard();
}

TEST_F(LostServer, is_followed_by_the_new_one_from_the_heard_position_with_Recover) {
    const Frames frames = signal(6 * second);
    ASSERT_EQ(S_OK, player->put_Recover(VARIANT_TRUE));
    const std::size_t before = recording.now();
    ASSERT_EQ(start(frames), 0);
    waitForSound(before, 2 * second);
    server.end();
    const std::size_t lost = recording.now();
    server.start();
    const Frames last(frames.end() - 3000, frames.end());
    ASSERT_TRUE(pumpUntil([&] { return !ends().empty(); }, 30s));
    EXPECT_EQ(ends(), std::vector<long>{PLAYEND_FINISHED});
    const Frames heard = recording.listenUntilQuiet(lost, 10s);
    EXPECT_NE(std::search(heard.begin(), heard.end(), last.begin(), last.end()), heard.end());
    // It goes on where the first server fell silent, give or take what that one still held.
    const auto first =
        std::search(frames.begin(), frames.end(), heard.begin(), heard.begin() + 200);
    ASSERT_NE(first, frames.end());
    EXPECT_NEAR(static_cast<double>(first - frames.begin()), 2.0 * second, 0.5 * second);
}

} // namespace
} // namespace corvina::test
