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

} // namespace
