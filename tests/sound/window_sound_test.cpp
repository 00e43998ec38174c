// The player window over both registered controls, driven by the messages that keys, menus and the
// desktop send.

#include "WindowTest.h"

namespace corvina::test {
namespace {

using Window = WindowTest;

TEST_F(Window, lists_the_files_and_marks_the_one_that_plays) {
    queue->play(1);
    ASSERT_EQ(::SendMessageW(list(), LB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(line(1)[0], L'\x25B6');
    EXPECT_EQ(line(0)[0], L' ');
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
    EXPECT_NEAR(queue->positionMs(), 5000, 300);
    command(CMD_BACK);
    EXPECT_NEAR(queue->positionMs(), 0, 300);
    slide(CTL_SEEK, 8250);
    EXPECT_NEAR(queue->positionMs(), 8250, 300);
}

TEST_F(Window, removes_the_chosen_file_from_the_list) {
    ::SendMessageW(list(), LB_SETCURSEL, 0, 0);
    command(CMD_REMOVE);
    EXPECT_EQ(queue->tracks().size(), 2u);
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
    queue->add(std::wstring(L"no such file.wav"));
    queue->play(0);
    const HWND bar = ::FindWindowExW(window->handle(), nullptr, STATUSCLASSNAMEW, nullptr);
    EXPECT_NE(textOf(bar).find(L"no such file.wav"), std::wstring::npos);
}

TEST_F(Window, marks_a_file_that_cannot_be_played_with_its_reason) {
    queue->clear();
    queue->add(std::wstring(L"no such file.wav"));
    queue->add(file(signal(10 * 44100)));
    queue->play(0);
    ASSERT_TRUE(queue->isPlaying());
    EXPECT_EQ(line(0)[0], L'\x2717');
    EXPECT_NE(line(0).find(queue->failure(0)), std::wstring::npos);
    EXPECT_FALSE(queue->failure(0).empty());
    EXPECT_EQ(line(1)[0], L'\x25B6');
}

TEST_F(Window, moves_the_chosen_file_by_key_while_another_plays) {
    const std::vector<app::Track> before = queue->tracks();
    queue->play(1);
    ::SendMessageW(list(), LB_SETCURSEL, 0, 0);
    command(CMD_MOVE_UP); // is the first already
    EXPECT_EQ(queue->tracks(), before);
    command(CMD_MOVE_DOWN);
    EXPECT_EQ(queue->tracks(), (std::vector<app::Track>{before[1], before[0], before[2]}));
    EXPECT_EQ(queue->current(), 0u);
    EXPECT_EQ(::SendMessageW(list(), LB_GETCURSEL, 0, 0), 1);
    EXPECT_TRUE(queue->isPlaying());
}

TEST_F(Window, moves_a_file_that_is_dragged_to_another_line) {
    const std::vector<app::Track> before = queue->tracks();
    const UINT message = ::RegisterWindowMessage(DRAGLISTMSGSTRING);
    ::SendMessageW(list(), LB_SETCURSEL, 0, 0);
    RECT line{};
    ::SendMessageW(list(), LB_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&line));
    POINT point{line.left + 5, (line.top + line.bottom) / 2};
    ::ClientToScreen(list(), &point);
    DRAGLISTINFO drag{DL_BEGINDRAG, list(), point};
    const auto send = [&](UINT notification) {
        drag.uNotification = notification;
        return ::SendMessageW(window->handle(), message, CTL_LIST, reinterpret_cast<LPARAM>(&drag));
    };
    EXPECT_TRUE(send(DL_BEGINDRAG));
    EXPECT_EQ(send(DL_DRAGGING), DL_MOVECURSOR);
    send(DL_DROPPED); // before the third line
    EXPECT_EQ(queue->tracks(), (std::vector<app::Track>{before[1], before[0], before[2]}));
    drag.ptCursor = {point.x, point.y + 10000}; // behind the last line
    ::SendMessageW(list(), LB_SETCURSEL, 0, 0);
    send(DL_DROPPED);
    EXPECT_EQ(queue->tracks(), (std::vector<app::Track>{before[0], before[2], before[1]}));
}

TEST_F(Window, switches_shuffle_and_repeat) {
    command(CMD_SHUFFLE);
    command(CMD_REPEAT);
    EXPECT_TRUE(queue->shuffled());
    EXPECT_TRUE(queue->repeated());
    const HMENU menu = ::GetMenu(window->handle());
    EXPECT_TRUE(::GetMenuState(menu, CMD_SHUFFLE, MF_BYCOMMAND) & MF_CHECKED);
    command(CMD_SHUFFLE);
    command(CMD_REPEAT);
    EXPECT_FALSE(queue->shuffled());
    EXPECT_FALSE(::GetMenuState(menu, CMD_REPEAT, MF_BYCOMMAND) & MF_CHECKED);
}

TEST_F(Window, keeps_every_control_inside_at_any_width) {
    for (const int width : {900, 620, 420, 330, 260, 200}) {
        ::SetWindowPos(window->handle(), nullptr, 0, 0, width, 520, SWP_NOMOVE | SWP_NOZORDER);
        RECT client{};
        ::GetClientRect(window->handle(), &client);
        ::MapWindowPoints(window->handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
        for (const int control :
             {CMD_PREVIOUS, CMD_PAUSE, CMD_STOP, CMD_NEXT, CMD_MUTE, CMD_EQUALIZER, CTL_VOLUME,
              CTL_BALANCE, CTL_DEVICE, CTL_LIST, CTL_SEEK}) {
            RECT place{};
            ::GetWindowRect(::GetDlgItem(window->handle(), control), &place);
            EXPECT_GE(place.left, client.left) << control << " at " << width;
            EXPECT_LE(place.right, client.right) << control << " at " << width;
            EXPECT_GT(place.right - place.left, 30) << control << " at " << width;
        }
    }
}

TEST_F(Window, ends_what_plays_when_it_is_closed) {
    queue->play(0);
    ASSERT_TRUE(pumpUntil([this] { return queue->positionMs() > 0; }));
    ::PostMessageW(window->handle(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(window->isOpen());
}

TEST_F(Window, may_be_closed_while_the_graph_draws) {
    const app::Settings settings = app::Settings::load();
    command(CMD_WAVEFORM);
    queue->play(0);
    ASSERT_TRUE(pumpUntil([&] { return graphShows(settings.curveColor); }, 5s));
    for (int count = 0; count < 50; ++count) {
        ::PostMessageW(window->handle(), WM_CLOSE, 0, 0);
        dispatchWaitingMessages();
    }
    ASSERT_TRUE(waitForEnd());
    EXPECT_FALSE(window->isOpen());
}

} // namespace
} // namespace corvina::test
