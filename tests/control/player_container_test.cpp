// The registered player in a container: its window and its size.

#include "PlayerControlFixture.h"
#include "platform/GdiHandles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

using namespace corvina;
using namespace corvina::test;

namespace {

TEST_F(PlayerControl, at_run_time_the_window_covers_nothing_of_the_form_and_keeps_its_size) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(player.get()));
    RECT box{};
    EXPECT_EQ(NULLREGION, ::GetWindowRgnBox(inPlaceWindow(), &box));
    RECT client{};
    ::GetClientRect(inPlaceWindow(), &client);
    EXPECT_GT(client.right, 0);
    EXPECT_GT(client.bottom, 0);
}

TEST_F(PlayerControl, has_a_window_that_is_a_child_of_its_container) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(player.get()));
    EXPECT_EQ(container.window(), ::GetParent(inPlaceWindow()));
}

TEST_F(PlayerControl, forces_its_width_and_height_to_512_each) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(player.get()));
    for (const int width : {100, 700}) {
        ::SetWindowPos(container.window(), nullptr, 0, 0, width, 90, SWP_NOMOVE | SWP_NOZORDER);
        RECT client{};
        ::GetClientRect(inPlaceWindow(), &client);
        EXPECT_EQ(512, client.right);
        EXPECT_EQ(512, client.bottom);
    }
}

TEST_F(PlayerControl, refuses_any_other_extent) {
    SIZEL size{1000, 1000}, got{};
    const auto object = player.query<IOleObject>();
    EXPECT_EQ(E_FAIL, object->SetExtent(DVASPECT_CONTENT, &size));
    EXPECT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &got));
    const ScreenContext screen(::GetDC(nullptr));
    EXPECT_EQ(::MulDiv(512, 2540, ::GetDeviceCaps(screen.get(), LOGPIXELSX)), got.cx);
}

TEST_F(PlayerControl, keeps_its_window_from_init_through_containers) {
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(player.get()));
        player->Init(&number);
    }
    Container next;
    ASSERT_EQ(S_OK, next.attach(player.get()));
    const HWND window = inPlaceWindow();
    EXPECT_EQ(next.window(), ::GetParent(window));
    player.query<IOleInPlaceObject>()->InPlaceDeactivate();
    EXPECT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(window, inPlaceWindow());
}

TEST_F(PlayerControl, survives_that_its_window_is_destroyed_and_can_be_initialised_again) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(player.get()));
    player->Init(&number);
    ::DestroyWindow(inPlaceWindow());
    EXPECT_EQ(S_OK, player->PlayStop(&number));
    EXPECT_EQ(S_OK, player->Init(&number));
    EXPECT_EQ(0, number);
    EXPECT_EQ(S_OK, player->DeInit(&number));
}

TEST_F(PlayerControl, ends_its_playback_when_its_window_is_destroyed) {
    TempFolder folder;
    EventSink sink(DIID___cPlayer);
    ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
    Container container;
    ASSERT_EQ(S_OK, container.attach(player.get()));
    player->Init(&number);
    const std::wstring file = folder.write(L"a.wav", plainWav(pcm(44100, 2, 16), noise(176400)));
    ASSERT_EQ(S_OK, player->PlayStart(Bstr(file).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    dispatchWaitingMessages();
    ::DestroyWindow(inPlaceWindow());
    PlayState state = PLAY_PLAYING;
    EXPECT_EQ(S_OK, player->get_State(&state));
    EXPECT_EQ(PLAY_STOPPED, state);
    ASSERT_FALSE(sink.received.empty());
    constexpr DISPID ended = 3;
    EXPECT_EQ(ended, sink.received.back().id);
    EXPECT_EQ(PLAYEND_STOPPED, V_I4(&sink.received.back().arguments[0]));
}

} // namespace
