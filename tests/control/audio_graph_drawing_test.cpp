// What may happen to the graph control while it draws the waveform and handles messages.

#include "GraphControlFixture.h"

#include <functional>
#include <memory>
#include <utility>

using namespace corvina;
using namespace corvina::test;

namespace {

// A window whose messages do something, as a host's own does.
class Doing {
public:
    explicit Doing(std::function<void()> action) : action_(std::move(action)) {
        window_ = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    nullptr, nullptr);
        ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure));
    }
    Doing(const Doing&) = delete;
    Doing& operator=(const Doing&) = delete;
    ~Doing() { ::DestroyWindow(window_); }

    void post() const { ::PostMessageW(window_, WM_APP, 0, 0); }
    int done = 0;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != WM_APP)
            return ::DefWindowProcW(window, message, wParam, lParam);
        auto* self = reinterpret_cast<Doing*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
        ++self->done;
        self->action_();
        return 0;
    }

    std::function<void()> action_;
    HWND window_ = nullptr;
};

TEST_F(GraphControl, pending_messages_are_handled_while_the_waveform_is_drawn) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing nothing([] {});
    for (int i = 0; i < 500; ++i)
        nothing.post();
    display();
    EXPECT_EQ(500, nothing.done);
}

TEST_F(GraphControl, a_message_that_posts_itself_again_does_not_hold_up_the_drawing) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    Doing* self = nullptr;
    Doing again([&] { self->post(); });
    self = &again;
    again.post();
    display();
    EXPECT_GT(again.done, 200); // one column after another
    EXPECT_LT(again.done, 100'000);
}

TEST_F(GraphControl, displaying_from_within_a_display_is_harmless) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing nested([&] { EXPECT_EQ(S_OK, graph->Display()); });
    for (int i = 0; i < 10; ++i)
        nested.post();
    display();
    EXPECT_EQ(10, nested.done);
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(green, seen().at(x, 100)) << x;
}

TEST_F(GraphControl, may_be_released_while_it_draws) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    _cAudioGraph* raw = graph.get();
    const Doing releasing([&] { graph.reset(); });
    releasing.post();
    EXPECT_EQ(S_OK, raw->Display());
    EXPECT_EQ(1, releasing.done);
}

TEST_F(GraphControl, its_form_may_be_closed_while_it_draws) {
    auto container = std::make_unique<Container>();
    ASSERT_EQ(S_OK, container->attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing closing([&] { container.reset(); });
    closing.post();
    display();
    EXPECT_EQ(1, closing.done);
    display();
}

TEST_F(GraphControl, its_form_may_be_closed_and_the_control_released_while_it_draws) {
    auto container = std::make_unique<Container>();
    ASSERT_EQ(S_OK, container->attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    _cAudioGraph* raw = graph.get();
    const Doing closing([&] {
        container.reset();
        graph.reset();
    });
    closing.post();
    EXPECT_EQ(S_OK, raw->Display());
    EXPECT_EQ(1, closing.done);
}

TEST_F(GraphControl, it_may_be_resized_cleared_and_given_new_samples_while_it_draws) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing everything([&] {
        long result = 0;
        ::SetWindowPos(container.window(), nullptr, 0, 0, 120, 80, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(S_OK, graph->ClearGraph(&result));
        take(std::vector<std::int16_t>(511, 16384));
        graph->put_GraphStyle(FREQUENCY_STYLE);
    });
    everything.post();
    display();
    EXPECT_EQ(1, everything.done);
    display();
    RECT client{};
    ::GetClientRect(window(), &client);
    EXPECT_EQ(120, client.right);
}

TEST_F(GraphControl, a_message_to_quit_is_left_for_the_hosts_own_loop) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    ::PostQuitMessage(42);
    display();
    MSG message{};
    bool quit = false;
    while (!quit && ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        quit = message.message == WM_QUIT;
    EXPECT_TRUE(quit);
    EXPECT_EQ(42U, message.wParam);
}

} // namespace
