// The registered player while it plays: what is let go of, and when.

#include "PlayerControlFixture.h"
#include "stream/SampleFeed.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <string>
#include <utility>
#include <vector>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DISPID errEvent = 2;

// A file that plays for a second.
std::wstring wave(TempFolder& folder) {
    return folder.write(L"tone.wav", plainWav(pcm(44100, 2, 16), noise(44100 * 4)));
}

TEST_F(PlayerControl, has_samples_for_a_graph_only_while_it_plays) {
    TempFolder folder;
    const auto followed = player.query<IFollowedPlayer>();
    ASSERT_TRUE(followed);
    const std::shared_ptr<SampleFeed> feed = followed->sampleFeed();
    SampleBlock block;
    player->Init(&number);
    EXPECT_FALSE(feed->latestSamples(block));
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    dispatchWaitingMessages();
    EXPECT_TRUE(feed->latestSamples(block));
    EXPECT_EQ(44100, block.sampleRate);
    EXPECT_EQ(2, block.channels);
    player->DeInit(&number);
    EXPECT_FALSE(feed->latestSamples(block));
}

class PlayerPositions : public PlayerControl {
protected:
    void SetUp() override {
        PlayerControl::SetUp();
        constexpr DISPID positionChanged = 5;
        ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
        sink.handler = [this](const EventSink::Event& event) {
            positions += event.id == positionChanged;
        };
    }
    void start(long interval) {
        ASSERT_EQ(S_OK, player->put_PositionInterval(interval));
        ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
    }

    TempFolder folder;
    EventSink sink{DIID___cPlayer};
    int positions = 0;
};

TEST_F(PlayerPositions, do_not_keep_the_player_alive) {
    const auto references = [&] {
        player->AddRef();
        return player->Release();
    };
    player->Init(&number);
    const ULONG before = references();
    start(20);
    EXPECT_TRUE(pumpUntil([&] { return positions >= 2; }));
    EXPECT_EQ(before, references());
    player->DeInit(&number);
}

TEST_F(PlayerPositions, come_once_with_the_latest_when_frozen_events_thaw) {
    const auto control = player.query<IOleControl>();
    player->Init(&number);
    start(10);
    ASSERT_TRUE(pumpUntil([&] { return positions > 0; }));
    control->FreezeEvents(TRUE);
    positions = 0;
    const ULONGLONG end = ::GetTickCount64() + 300;
    EXPECT_TRUE(pumpUntil([&] { return ::GetTickCount64() >= end; }));
    EXPECT_EQ(0, positions);
    control->FreezeEvents(FALSE);
    EXPECT_EQ(1, positions);
    player->DeInit(&number);
}

TEST_F(PlayerControl, may_be_released_while_it_plays) {
    TempFolder folder;
    player->Init(&number);
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    dispatchWaitingMessages();
    player.reset();
    dispatchWaitingMessages();
}

TEST_F(PlayerControl, raises_no_event_while_it_is_destroyed) {
    TempFolder folder;
    EventSink sink(DIID___cPlayer);
    // Without the connection point, which would keep the control alive.
    ComPtr<IConnectionPoint> point;
    DWORD cookie = 0;
    ASSERT_EQ(S_OK, player.query<IConnectionPointContainer>()->FindConnectionPoint(DIID___cPlayer,
                                                                                   point.put()));
    ASSERT_EQ(S_OK, point->Advise(&sink, &cookie));
    point.reset();
    player->Init(&number);
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    dispatchWaitingMessages();
    EXPECT_FALSE(sink.received.empty());
    sink.received.clear();
    player.reset();
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(PlayerControl, may_lose_its_container_while_it_plays_and_plays_on) {
    TempFolder folder;
    EventSink sink(DIID___cPlayer);
    sink.connect(player.get(), DIID___cPlayer);
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(player.get()));
        player->Init(&number);
        ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
    }
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_TRUE(pumpUntil([&] { return player->IsPlaying(&playing) == S_OK && !playing; }));
    ASSERT_FALSE(sink.received.empty());
    // DonePlay, StateChanged, Ended.
    ASSERT_GE(sink.received.size(), 3u);
    const std::vector<DISPID> last{(sink.received.end() - 3)->id, (sink.received.end() - 2)->id,
                                   sink.received.back().id};
    EXPECT_EQ((std::vector<DISPID>{1, 4, 3}), last);
}

// What OutputDebugString raises, in either width.
constexpr DWORD ansiDebugOutput = 0x40010006;
constexpr DWORD wideDebugOutput = 0x4001000A;
int debugOutputs = 0;

LONG CALLBACK countDebugOutput(EXCEPTION_POINTERS* raised) {
    const DWORD code = raised->ExceptionRecord->ExceptionCode;
    debugOutputs += code == ansiDebugOutput || code == wideDebugOutput;
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST_F(PlayerControl, writes_no_debug_output) {
    TempFolder folder;
    void* const counter = ::AddVectoredExceptionHandler(TRUE, &countDebugOutput);
    ::OutputDebugStringA("counted");
    EXPECT_EQ(1, std::exchange(debugOutputs, 0));
    player->Init(&number);
    EXPECT_EQ(1, open(L"no such file.wav"));
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_TRUE(pumpUntil([&] { return player->IsPlaying(&playing) == S_OK && !playing; }));
    player->DeInit(&number);
    player.reset();
    EXPECT_EQ(0, debugOutputs);
    ::RemoveVectoredExceptionHandler(counter);
}

TEST_F(PlayerControl, may_be_released_in_its_done_play_handler) {
    TempFolder folder;
    EventSink sink(DIID___cPlayer);
    sink.connect(player.get(), DIID___cPlayer);
    bool done = false;
    sink.handler = [&](const EventSink::Event& event) {
        if (event.id != errEvent) {
            sink.disconnect();
            player.reset();
            done = true;
        }
    };
    player->Init(&number);
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(wave(folder)).get(), -1, 0, &number));
    EXPECT_TRUE(pumpUntil([&] { return done; }));
}

} // namespace
