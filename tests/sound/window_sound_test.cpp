// The player window over both registered controls, driven by the messages that keys, menus and the
// desktop send.

#include "PlayQueue.h"
#include "SoundTest.h"
#include "window/Commands.h"
#include "window/PlayerWindow.h"

#include <memory>
#include <windows.h>

#include <commctrl.h>

namespace corvina::test {
namespace {

class Window : public SoundTest {
protected:
    void SetUp() override {
        SoundTest::SetUp();
        // A window that has its picture taken needs no window manager and leaves no settings.
        options.pictureFile = L"unused";
        queue = std::make_unique<app::PlayQueue>(
            app::QueueHandlers{[this] { window->onStarted(); },
                               [this] {
                                   ++ended;
                                   window->onEnded();
                               },
                               [this](const std::wstring& words) { window->onFailed(words); },
                               {}});
        for (int count = 0; count < 3; ++count)
            queue->add(file(signal(10 * 44100)));
        window = std::make_unique<app::PlayerWindow>(*queue, options);
    }

    void command(int number) const {
        ::SendMessageW(window->handle(), WM_COMMAND, static_cast<WPARAM>(number), 0);
    }

    [[nodiscard]] std::wstring textOf(HWND control) const {
        wchar_t text[256] = L"";
        ::GetWindowTextW(control, text, 256);
        return text;
    }

    [[nodiscard]] HWND list() const { return ::GetDlgItem(window->handle(), CTL_LIST); }

    [[nodiscard]] bool waitForEnd() {
        return pumpUntil([this] { return ended > 0; });
    }

    // Whether a picture of the graph holds that colour.
    [[nodiscard]] bool graphShows(COLORREF color) const {
        const HWND graph = ::FindWindowExW(window->handle(), nullptr, L"AtlAxWin", nullptr);
        RECT area{};
        ::GetWindowRect(graph, &area);
        const HDC screen = ::GetDC(nullptr);
        bool found = false;
        for (int y = area.bottom - 1; y >= area.top && !found; y -= 2)
            for (int x = area.left; x < area.right && !found; x += 2)
                found = ::GetPixel(screen, x, y) == color;
        ::ReleaseDC(nullptr, screen);
        return found;
    }

    app::Options options;
    int ended = 0;
    std::unique_ptr<app::PlayQueue> queue;
    std::unique_ptr<app::PlayerWindow> window;
};

TEST_F(Window, lists_the_files_and_marks_the_one_that_plays) {
    queue->play(1);
    ASSERT_EQ(::SendMessageW(list(), LB_GETCOUNT, 0, 0), 3);
    wchar_t line[MAX_PATH];
    ::SendMessageW(list(), LB_GETTEXT, 1, reinterpret_cast<LPARAM>(line));
    EXPECT_EQ(line[0], L'\x25B6');
    ::SendMessageW(list(), LB_GETTEXT, 0, reinterpret_cast<LPARAM>(line));
    EXPECT_EQ(line[0], L' ');
}

TEST_F(Window, plays_with_space_and_pauses_and_goes_on) {
    command(CMD_PAUSE);
    EXPECT_TRUE(queue->isPlaying());
    command(CMD_PAUSE);
    EXPECT_TRUE(queue->player().isPaused());
    command(CMD_PAUSE);
    EXPECT_FALSE(queue->player().isPaused());
}

TEST_F(Window, goes_through_the_list_and_stops) {
    queue->play(0);
    command(CMD_NEXT);
    ASSERT_TRUE(pumpUntil([this] { return queue->current() == 1 && queue->isPlaying(); }));
    command(CMD_PREVIOUS);
    ASSERT_TRUE(pumpUntil([this] { return queue->current() == 0 && queue->isPlaying(); }));
    command(CMD_STOP);
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Window, plays_the_chosen_file) {
    ::SendMessageW(list(), LB_SETCURSEL, 2, 0);
    command(CMD_PLAY_SELECTED);
    EXPECT_EQ(queue->current(), 2u);
    EXPECT_TRUE(queue->isPlaying());
}

TEST_F(Window, seeks_by_five_seconds_and_by_its_bar) {
    queue->play(0);
    command(CMD_FORWARD);
    EXPECT_EQ(queue->player().positionSeconds(), 5);
    command(CMD_BACK);
    EXPECT_EQ(queue->player().positionSeconds(), 0);
    const HWND bar = ::GetDlgItem(window->handle(), CTL_SEEK);
    ::SendMessageW(bar, TBM_SETPOS, TRUE, 8);
    ::SendMessageW(window->handle(), WM_HSCROLL, TB_ENDTRACK, reinterpret_cast<LPARAM>(bar));
    EXPECT_EQ(queue->player().positionSeconds(), 8);
}

TEST_F(Window, removes_the_chosen_file_from_the_list) {
    ::SendMessageW(list(), LB_SETCURSEL, 0, 0);
    command(CMD_REMOVE);
    EXPECT_EQ(queue->files().size(), 2u);
    EXPECT_EQ(::SendMessageW(list(), LB_GETCOUNT, 0, 0), 2);
    command(CMD_CLEAR);
    EXPECT_EQ(::SendMessageW(list(), LB_GETCOUNT, 0, 0), 0);
}

TEST_F(Window, draws_what_plays_in_both_styles) {
    const app::Settings settings = app::Settings::load();
    command(CMD_SPECTRUM);
    queue->play(0);
    EXPECT_TRUE(pumpUntil([&] { return graphShows(settings.barColor); }, 5s));
    command(CMD_WAVEFORM);
    EXPECT_TRUE(pumpUntil([&] { return graphShows(settings.curveColor); }, 5s));
}

TEST_F(Window, says_in_words_what_went_wrong) {
    queue->clear();
    queue->add(L"no such file.wav");
    queue->play(0);
    const HWND bar = ::FindWindowExW(window->handle(), nullptr, STATUSCLASSNAMEW, nullptr);
    EXPECT_NE(textOf(bar).find(L"no such file.wav"), std::wstring::npos);
}

TEST_F(Window, ends_what_plays_when_it_is_closed) {
    queue->play(0);
    ASSERT_TRUE(pumpUntil([this] { return queue->player().positionSeconds() > 0; }));
    ::PostMessageW(window->handle(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(window->isOpen());
}

// The graph handles messages while it draws a curve, so the request comes in the middle of it.
TEST_F(Window, may_be_closed_while_the_graph_draws) {
    command(CMD_WAVEFORM);
    queue->play(0);
    for (int count = 0; count < 50 && window->isOpen(); ++count) {
        ::PostMessageW(window->handle(), WM_TIMER, 1, 0);
        ::PostMessageW(window->handle(), WM_CLOSE, 0, 0);
        dispatchWaitingMessages();
    }
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(window->isOpen());
}

} // namespace
} // namespace corvina::test
