// Containers whose DPI awareness is another than that of the control's window, so that Windows
// refuses to move the window into them.

#include "TestControl.h"
#include "control/ControlWindow.h"
#include "graph/cAudioGraph.h"
#include "player/cPlayer.h"
#include "support/FaultyWindows.h"
#include "support/SampleBlocks.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr auto forever = Faults::Lasting::forever;

void refuseToMove() {
    windowFaults.arm("SetParent", 1, forever);
    ControlWindow::useWindowApi(&faultyWindowApi);
}
void allowToMove() {
    windowFaults.disarm();
    ControlWindow::useWindowApi(nullptr);
}

class OtherAwareness : public ControlBaseTest {
protected:
    void TearDown() override {
        ControlBaseTest::TearDown();
        allowToMove();
    }
    HWND window() { return control->base().window(); }
    HRESULT activate() {
        const auto object = as<IOleObject>();
        ComPtr<IOleClientSite> site;
        object->GetClientSite(site.put());
        return object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site.get(), 0, nullptr, nullptr);
    }
};

TEST_F(OtherAwareness, the_control_gets_a_window_inside_the_containers) {
    const HWND before = window();
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_TRUE(control->base().active());
    EXPECT_NE(before, window());
    EXPECT_EQ(container.window(), ::GetParent(window()));
    EXPECT_TRUE(::IsWindowVisible(window()));
    EXPECT_EQ(300, control->base().pixelSize().cx);
    EXPECT_EQ(200, control->base().pixelSize().cy);
    EXPECT_EQ(1, control->replacedWindows);
    EXPECT_EQ(0, control->lostWindows);
}

TEST_F(OtherAwareness, the_window_of_the_container_is_the_one_that_is_given_painted_and_focused) {
    static_cast<void>(window());
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    HWND given = nullptr;
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->GetWindow(&given));
    EXPECT_EQ(window(), given);
    control->drawn = 0;
    control->base().pictureChanged();
    control->base().paintNow();
    EXPECT_EQ(1, control->drawn);
    EXPECT_EQ(S_OK, control->base().active() ? activate() : E_FAIL);
    ::SetFocus(given);
    EXPECT_EQ(given, ::GetFocus());
}

TEST_F(OtherAwareness, the_window_for_messages_stays_the_same) {
    const HWND before = control->base().messageWindow();
    EXPECT_EQ(before, window());
    refuseToMove();
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(unknown()));
        EXPECT_EQ(before, control->base().messageWindow());
        EXPECT_TRUE(::IsWindow(before));
        EXPECT_FALSE(::IsWindowVisible(before));
    }
    EXPECT_EQ(before, control->base().messageWindow());
    EXPECT_TRUE(::IsWindow(before));
}

TEST_F(OtherAwareness, deactivation_goes_back_to_the_first_window_if_the_other_cannot_be_moved) {
    const HWND before = window();
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND inContainer = window();
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_EQ(before, window());
    EXPECT_FALSE(::IsWindow(inContainer));
    EXPECT_EQ(2, control->replacedWindows);
    EXPECT_EQ(S_OK, activate());
    EXPECT_EQ(container.window(), ::GetParent(window()));
    EXPECT_TRUE(::IsWindowVisible(window()));
}

TEST_F(OtherAwareness, a_window_that_was_taken_out_of_its_container_goes_into_the_next) {
    const HWND before = window();
    windowFaults.arm("SetParent", 1);
    ControlWindow::useWindowApi(&faultyWindowApi);
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND made = window();
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_EQ(made, window()) << "this time it could be moved";
    EXPECT_FALSE(::IsWindowVisible(made));
    EXPECT_EQ(S_OK, activate());
    EXPECT_EQ(made, window());
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    // The next container is again of the first one's awareness.
    refuseToMove();
    EXPECT_EQ(S_OK, activate());
    EXPECT_NE(made, window());
    EXPECT_FALSE(::IsWindow(made)) << "it is of no use any more";
    EXPECT_TRUE(::IsWindow(before));
    EXPECT_EQ(container.window(), ::GetParent(window()));
}

TEST_F(OtherAwareness, a_window_destroyed_with_its_container_leaves_the_first_one) {
    const HWND before = window();
    refuseToMove();
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(unknown()));
        ::DestroyWindow(window());
        EXPECT_FALSE(control->base().active());
        EXPECT_EQ(before, window());
        EXPECT_EQ(0, control->lostWindows);
        EXPECT_EQ(2, control->replacedWindows);
    }
    allowToMove();
    Container next;
    ASSERT_EQ(S_OK, next.attach(unknown()));
    EXPECT_EQ(before, window());
    EXPECT_EQ(next.window(), ::GetParent(before));
}

TEST_F(OtherAwareness, a_first_window_that_is_destroyed_leaves_the_one_in_the_container) {
    const HWND before = window();
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND inContainer = window();
    ::DestroyWindow(before);
    EXPECT_EQ(1, control->lostWindows);
    EXPECT_TRUE(control->base().active());
    EXPECT_EQ(inContainer, window());
    EXPECT_EQ(inContainer, control->base().messageWindow());
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_EQ(inContainer, window()) << "there is no other to go back to";
}

TEST_F(OtherAwareness, no_window_is_left_behind) {
    refuseToMove();
    HWND first = nullptr;
    HWND inContainer = nullptr;
    {
        const auto victim = makeCom<TestControl>();
        first = victim->base().window();
        Container container;
        ASSERT_EQ(S_OK, container.attach(static_cast<cCallback*>(victim.get())));
        inContainer = victim->base().window();
        EXPECT_NE(first, inContainer);
    }
    EXPECT_FALSE(::IsWindow(first));
    EXPECT_FALSE(::IsWindow(inContainer));
}

TEST_F(OtherAwareness, a_window_made_only_for_the_container_is_replaced_as_well) {
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(container.window(), ::GetParent(window()));
}

class OtherAwarenessOfControls : public ApartmentTest {
protected:
    void TearDown() override {
        ApartmentTest::TearDown();
        allowToMove();
    }

    TempFolder folder;
    long number = -1;
};

TEST_F(OtherAwarenessOfControls, a_playback_begun_before_activation_comes_to_its_end) {
    const auto player = makeCom<corvina::cPlayer>();
    _cPlayer* const members = player.get();
    ASSERT_EQ(S_OK, members->Init(&number));
    // The events of the class are asked for by its identifier.
    EventSink sink(DIID___cPlayer);
    ASSERT_EQ(S_OK, sink.connect(members, DIID___cPlayer));
    int ends = 0;
    sink.handler = [&](const EventSink::Event& event) { ends += event.arguments.empty(); };
    const std::wstring file = folder.write(L"short.wav", plainWav(pcm(44100, 2, 16), noise(44100)));
    ASSERT_EQ(S_OK, members->PlayStart(Bstr(file).get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    refuseToMove();
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(members));
        HWND given = nullptr;
        ASSERT_EQ(S_OK, player.query<IOleInPlaceObject>()->GetWindow(&given));
        EXPECT_EQ(container.window(), ::GetParent(given));
        // Again during the playback: it goes on, as with any window.
        EXPECT_EQ(S_OK, members->get_AudioDataOut(&number));
        EXPECT_TRUE(pumpUntil([&] { return ends > 0; }, std::chrono::seconds(10)));
        // And one that begins inside the container.
        ASSERT_EQ(S_OK, members->PlayStart(Bstr(file).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
    }
    EXPECT_TRUE(pumpUntil([&] { return ends > 1; }, std::chrono::seconds(10)))
        << "the end of the container is not the end of the playback";
    EXPECT_EQ(S_OK, members->DeInit(&number));
}

TEST_F(OtherAwarenessOfControls, a_player_initialised_inside_the_container_outlives_it) {
    const auto player = makeCom<corvina::cPlayer>();
    _cPlayer* const members = player.get();
    refuseToMove();
    int ends = 0;
    EventSink sink(DIID___cPlayer);
    ASSERT_EQ(S_OK, sink.connect(members, DIID___cPlayer));
    sink.handler = [&](const EventSink::Event& event) { ends += event.arguments.empty(); };
    const std::wstring file = folder.write(L"short.wav", plainWav(pcm(44100, 2, 16), noise(44100)));
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(members));
        ASSERT_EQ(S_OK, members->Init(&number));
        ASSERT_EQ(S_OK, members->PlayStart(Bstr(file).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
    }
    EXPECT_TRUE(pumpUntil([&] { return ends > 0; }, std::chrono::seconds(10)));
}

TEST_F(OtherAwarenessOfControls, the_graphs_handle_and_its_timer_are_those_of_the_new_window) {
    const auto player = makeCom<corvina::cPlayer>();
    const auto graph = makeCom<corvina::cAudioGraph>();
    _cAudioGraph* const members = graph.get();
    long before = 0;
    ASSERT_EQ(S_OK, members->get_hWnd(&before));
    ASSERT_EQ(S_OK, members->putref_Player(static_cast<_cPlayer*>(player.get())));
    refuseToMove();
    Container container;
    ASSERT_EQ(S_OK, container.attach(members));
    long after = 0;
    ASSERT_EQ(S_OK, members->get_hWnd(&after));
    EXPECT_NE(before, after);
    const auto handle = [](long value) {
        return reinterpret_cast<HWND>(static_cast<LONG_PTR>(value));
    };
    EXPECT_EQ(container.window(), ::GetParent(handle(after)));
    int ticks = 0;
    int ticksOfFormer = 0;
    for (const ULONGLONG end = ::GetTickCount64() + 5000; ticks <= 2 && ::GetTickCount64() < end;) {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            ticks += message.message == WM_TIMER && message.hwnd == handle(after);
            ticksOfFormer += message.message == WM_TIMER && message.hwnd == handle(before);
            ::DispatchMessageW(&message);
        }
        ::Sleep(5);
    }
    EXPECT_GT(ticks, 2);
    EXPECT_EQ(0, ticksOfFormer);
    EXPECT_EQ(S_OK, members->Display());
}

} // namespace
