// Hosts whose handlers let an exception out: a structured one, as other languages raise them, or a
// jump out of the handler that runs no destructor.

#include "GraphControlFixture.h"
#include "PlayerControlFixture.h"
#include "PropertySink.h"
#include "TestControl.h"
#include "support/HiddenWindow.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DWORD ofCpp = 0xE06D7363;
constexpr DWORD ofPascal = 0x0EEDFADE;

[[noreturn]] void raise(DWORD code) {
    for (;;)
        ::RaiseException(code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

class ThrowingHandlers : public ControlBaseTest, public ::testing::WithParamInterface<DWORD> {
protected:
    void fire() { control->base().events().fire(1, {std::int32_t{1}}); }
};

TEST_P(ThrowingHandlers, the_other_listeners_still_receive_the_event) {
    EventSink first(DIID___cAudioGraph), second(DIID___cAudioGraph);
    first.connect(unknown(), DIID___cAudioGraph);
    second.connect(unknown(), DIID___cAudioGraph);
    first.handler = [](const EventSink::Event&) { raise(GetParam()); };
    fire();
    fire();
    EXPECT_EQ(2u, first.received.size());
    EXPECT_EQ(2u, second.received.size());
}

TEST_P(ThrowingHandlers, the_control_is_not_kept_alive) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    sink.handler = [](const EventSink::Event&) { raise(GetParam()); };
    fire();
    sink.disconnect();
    control.reset();
    EXPECT_EQ(0, TestControl::alive);
}

TEST_P(ThrowingHandlers, a_listener_to_property_changes_leaves_the_change_done) {
    PropertySink sink;
    ComPtr<IConnectionPoint> point;
    as<IConnectionPointContainer>()->FindConnectionPoint(IID_IPropertyNotifySink, point.put());
    sink.connect(point);
    sink.handler = [] { raise(GetParam()); };
    EXPECT_EQ(S_OK, control->base().setProperty(TestControl::level, 50));
    EXPECT_EQ(50, control->base().property(TestControl::level));
}

INSTANTIATE_TEST_SUITE_P(OfEveryLanguage, ThrowingHandlers, ::testing::Values(ofCpp, ofPascal));

class ThrowingPlayerHost : public PlayerControl {
protected:
    std::wstring tone() {
        return folder_.write(L"tone.wav", plainWav(pcm(44100, 2, 16), noise(44100)));
    }
    void play() {
        player->Init(&number);
        ASSERT_EQ(S_OK, player->PlayStart(Bstr(tone()).get(), -1, 0, &number));
        ASSERT_EQ(0, number);
    }

private:
    TempFolder folder_;
};

TEST_F(ThrowingPlayerHost, still_gets_the_result_of_a_failed_open) {
    EventSink sink(DIID___cPlayer);
    sink.connect(player.get(), DIID___cPlayer);
    sink.handler = [](const EventSink::Event&) { raise(ofPascal); };
    EXPECT_EQ(1, open(L"no such file.wav"));
}

TEST_F(ThrowingPlayerHost, still_gets_done_play_after_an_err_that_threw) {
    EventSink sink(DIID___cPlayer);
    sink.connect(player.get(), DIID___cPlayer);
    sink.handler = [](const EventSink::Event& event) {
        if (event.id != 1)
            raise(ofCpp);
    };
    play();
    EXPECT_TRUE(pumpUntil(
        [&] { return std::ranges::count(sink.received, DISPID{1}, &EventSink::Event::id) == 1; }));
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_EQ(S_OK, player->IsPlaying(&playing));
    EXPECT_EQ(VARIANT_FALSE, playing);
    player->DeInit(&number);
}

// What the thread's list of handlers was, and where to jump to.
struct Jump {
    void* place[5];
};

class ThrowingGraphHost : public GraphControl {
protected:
    // A window of the host whose messages run the handler.
    class Window {
    public:
        explicit Window(std::function<void()> handler) : handler_(std::move(handler)) {
            current = this;
            ::SetWindowLongPtrW(window_.handle(), GWLP_WNDPROC,
                                static_cast<LONG>(reinterpret_cast<LONG_PTR>(&procedure)));
            ::PostMessageW(window_.handle(), WM_APP, 0, 0);
        }

    private:
        static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
            if (message == WM_APP)
                current->handler_();
            return ::DefWindowProcW(window, message, wParam, lParam);
        }
        static inline Window* current = nullptr;
        HiddenWindow window_;
        std::function<void()> handler_;
    };

    void SetUp() override {
        GraphControl::SetUp();
        graph->put_GraphStyle(AMPLITUDE_STYLE); // the style that handles messages meanwhile
        takeTone();
    }
    // The waveform is drawn anew by a display of other samples.
    void expectDisplayWorks() {
        display();
        const Picture before = drawn({200, 100});
        take({});
        display();
        EXPECT_GT(drawn({200, 100}).differences(before), 0);
    }
};

TEST_F(ThrowingGraphHost, in_level_changed_still_has_its_samples_taken) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(graph.get(), DIID___cAudioGraph);
    sink.handler = [](const EventSink::Event&) { raise(ofCpp); };
    takeTone();
    EXPECT_EQ(1u, sink.received.size());
}

TEST_F(ThrowingGraphHost, in_a_message_while_the_graph_is_displayed_can_display_again) {
    int handled = 0;
    Window window([&] {
        ++handled;
        raise(ofPascal);
    });
    display();
    EXPECT_EQ(1, handled);
    expectDisplayWorks();
}

TEST_F(ThrowingGraphHost,
       that_jumps_out_of_a_message_while_the_graph_is_displayed_can_display_again) {
    static Jump jump;
    const DWORD handlers = __readfsdword(0);
    Window window([] { __builtin_longjmp(jump.place, 1); });
    if (__builtin_setjmp(jump.place) == 0)
        display();
    __writefsdword(0, handlers);
    expectDisplayWorks();
}

} // namespace
