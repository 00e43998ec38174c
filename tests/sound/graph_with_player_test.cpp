// What the player plays, shown by the graph: two controls of one host.

#include "../control/Support.h"
#include "graph/Surface.h"
#include "support/MessagePump.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <cmath>

using namespace corvina;
using namespace corvina::test;

namespace {

// Two seconds of a tone, mono.
Bytes tone(double hertz, int amplitude) {
    constexpr DWORD rate = 44100;
    Bytes data;
    for (DWORD i = 0; i < 2 * rate; ++i) {
        const auto sample = static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(
            amplitude * std::sin(2 * 3.14159265358979 * hertz * static_cast<double>(i) / rate))));
        data.push_back(static_cast<std::uint8_t>(sample));
        data.push_back(static_cast<std::uint8_t>(sample >> 8));
    }
    return plainWav(pcm(rate, 1, 16), data);
}

class GraphWithPlayer : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        if (::waveOutGetNumDevs() == 0)
            GTEST_SKIP() << "there is no wave output device";
        long result = 0;
        player = create<_cPlayer>(CLSID_cPlayer);
        graph = create<_cAudioGraph>(CLSID_cAudioGraph);
        ASSERT_EQ(S_OK, player->Init(&result));
        ASSERT_EQ(S_OK, graph->Init(&result));
    }
    void TearDown() override {
        long result = 0;
        if (player)
            player->DeInit(&result);
        player.reset();
        graph.reset();
        ApartmentTest::TearDown();
    }
    void play(const Bytes& file) {
        long result = 1;
        const Bstr path(folder.write(L"tone.wav", file));
        ASSERT_EQ(S_OK, player->PlayStart(path.get(), -1, 0, &result));
        ASSERT_EQ(0, result);
    }
    // Hands the latest block over and draws it, as a host's timer does.
    void showLatest() {
        long address = 0, result = 1;
        ASSERT_EQ(S_OK, player->get_AudioDataOut(&address));
        ASSERT_EQ(S_OK, graph->SetAudioData(address, &result));
        ASSERT_EQ(S_OK, graph->Display());
    }
    COLORREF pixel(int x, int y) {
        Surface picture;
        picture.resize({200, 100});
        const RECTL bounds{0, 0, 200, 100};
        graph.query<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr,
                                         picture.dc(), &bounds, nullptr, nullptr, 0);
        return ::GetPixel(picture.dc(), x, y);
    }

    TempFolder folder;
    ComPtr<_cPlayer> player;
    ComPtr<_cAudioGraph> graph;
};

constexpr COLORREF green = RGB(0, 255, 0);

TEST_F(GraphWithPlayer, a_tone_of_1_kHz_that_plays_fills_its_bar_and_not_those_far_above) {
    play(tone(1000, 20000)); // bin 23.2: band 4, at 16 ... 18
    EXPECT_TRUE(pumpUntil(
        [&] {
            showLatest();
            return pixel(17, 0) == green;
        },
        10s));
    EXPECT_NE(pixel(4 * 40 + 1, 50), green);
}

TEST_F(GraphWithPlayer, bars_fall_to_nothing_once_silence_plays) {
    play(plainWav(pcm(44100, 1, 16), Bytes(4 * 44100)));
    showLatest();
    EXPECT_TRUE(pumpUntil(
        [&] {
            showLatest();
            return pixel(17, 99) != green;
        },
        10s));
}

TEST_F(GraphWithPlayer, before_the_first_playback_the_player_has_no_samples_to_take) {
    long address = 7, result = 0;
    ASSERT_EQ(S_OK, player->get_AudioDataOut(&address));
    EXPECT_EQ(0, address);
    EXPECT_EQ(static_cast<HRESULT>(0x800A0005), graph->SetAudioData(address, &result));
}

TEST_F(GraphWithPlayer, the_last_samples_can_be_shown_after_playing) {
    play(tone(1000, 20000));
    long result = 0;
    player->PlayStop(&result);
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_TRUE(pumpUntil([&] { return player->IsPlaying(&playing) == S_OK && !playing; }, 10s));
    showLatest();
}

class GraphFollowing : public GraphWithPlayer {
protected:
    void SetUp() override {
        GraphWithPlayer::SetUp();
        if (IsSkipped())
            return;
        ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
        ASSERT_EQ(S_OK, graph->putref_Player(player.get()));
    }
    void TearDown() override {
        sink.disconnect();
        GraphWithPlayer::TearDown();
    }

    EventSink sink{DIID___cAudioGraph};
};

TEST_F(GraphFollowing, draws_what_plays_without_a_timer_of_the_host) {
    play(tone(1000, 20000));
    EXPECT_TRUE(pumpUntil([&] { return pixel(17, 0) == green; }, 10s));
    EXPECT_NE(pixel(4 * 40 + 1, 50), green);
    EXPECT_GT(sink.received.size(), 0u);
    EXPECT_EQ(1, sink.received.back().id);
}

TEST_F(GraphFollowing, draws_in_the_window_of_a_container) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    play(tone(1000, 20000));
    long handle = 0;
    graph->get_hWnd(&handle);
    const HWND window = reinterpret_cast<HWND>(static_cast<LONG_PTR>(handle));
    EXPECT_TRUE(pumpUntil(
        [&] {
            const HDC dc = ::GetDC(window);
            const COLORREF seen = ::GetPixel(dc, 17, 3);
            ::ReleaseDC(window, dc);
            return seen == green;
        },
        10s));
    // Without its form the control still follows.
    container.destroy();
    sink.received.clear();
    EXPECT_TRUE(pumpUntil([&] { return sink.received.size() > 3; }, 10s));
}

TEST_F(GraphFollowing, clears_the_picture_when_the_playback_ends) {
    play(tone(1000, 20000));
    ASSERT_TRUE(pumpUntil([&] { return pixel(17, 0) == green; }, 10s));
    long result = 0;
    player->PlayStop(&result);
    EXPECT_TRUE(pumpUntil([&] { return pixel(17, 99) != green; }, 10s));
}

TEST_F(GraphFollowing, stops_and_clears_when_the_player_goes) {
    play(tone(1000, 20000));
    ASSERT_TRUE(pumpUntil([&] { return pixel(17, 0) == green; }, 10s));
    EXPECT_EQ(0u, player.detach()->Release());
    EXPECT_TRUE(pumpUntil([&] { return pixel(17, 99) != green; }, 10s));
    const std::size_t events = sink.received.size();
    (void)pumpUntil([] { return false; }, 200ms);
    EXPECT_EQ(events, sink.received.size());
}

TEST_F(GraphFollowing, draws_as_often_as_the_frames_per_second_say) {
    play(tone(1000, 20000));
    const auto eventsInASecond = [&](long frames) {
        graph->put_FramesPerSecond(frames);
        sink.received.clear();
        (void)pumpUntil([] { return false; }, 700ms);
        return sink.received.size();
    };
    const std::size_t few = eventsInASecond(5);
    const std::size_t many = eventsInASecond(50);
    EXPECT_GE(few, 1u);
    EXPECT_LE(few, 6u);
    EXPECT_GT(many, 2 * few);
}

TEST_F(GraphFollowing, a_handler_may_let_go_of_everything) {
    play(tone(1000, 20000));
    bool released = false;
    sink.handler = [&](const EventSink::Event&) {
        if (released)
            return;
        released = true;
        graph->put_Player(nullptr);
        player.reset();
        graph.reset();
    };
    EXPECT_TRUE(pumpUntil([&] { return released; }, 10s));
    (void)pumpUntil([] { return false; }, 100ms);
}

TEST_F(GraphFollowing, two_graphs_follow_one_player_in_their_own_styles) {
    const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
    other->put_GraphStyle(AMPLITUDE_STYLE);
    other->put_ChannelWaveforms(VARIANT_TRUE);
    ASSERT_EQ(S_OK, other->put_Player(player.get()));
    play(tone(1000, 20000));
    const auto drawsWaveform = [&] {
        Surface picture;
        picture.resize({200, 100});
        const RECTL bounds{0, 0, 200, 100};
        other.query<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr,
                                         picture.dc(), &bounds, nullptr, nullptr, 0);
        // A mono file has one curve, over the whole height: an amplitude of 20000 in 32768.
        return ::GetPixel(picture.dc(), 100, 25) == green &&
               ::GetPixel(picture.dc(), 100, 75) == green &&
               ::GetPixel(picture.dc(), 100, 10) != green;
    };
    EXPECT_TRUE(pumpUntil([&] { return pixel(17, 0) == green && drawsWaveform(); }, 10s));
}

} // namespace
