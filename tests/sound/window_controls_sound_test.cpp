// The sliders, buttons, keys and lists of the player window, and the sound that they make.

#include "WindowTest.h"
#include "window/EqualizerPanel.h"

#include <algorithm>
#include <vector>

namespace corvina::test {
namespace {

using Window = WindowTest;

TEST_F(Window, changes_the_volume_by_slider_and_keys_and_wheel) {
    slide(CTL_VOLUME, 40);
    EXPECT_EQ(queue->player().volume(), 40);
    EXPECT_TRUE(press(VK_ADD));
    EXPECT_TRUE(press(VK_UP));
    EXPECT_EQ(queue->player().volume(), 50);
    EXPECT_EQ(::SendMessageW(control(CTL_VOLUME), TBM_GETPOS, 0, 0), 50);
    EXPECT_TRUE(press(VK_SUBTRACT));
    EXPECT_EQ(queue->player().volume(), 45);
    ::SendMessageW(window->handle(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    EXPECT_EQ(queue->player().volume(), 50);
    for (int count = 0; count < 20; ++count)
        command(CMD_LOUDER);
    EXPECT_EQ(queue->player().volume(), 100);
    for (int count = 0; count < 30; ++count)
        command(CMD_QUIETER);
    EXPECT_EQ(queue->player().volume(), 0);
}

TEST_F(Window, mutes_by_its_button_and_shows_it) {
    ::SendMessageW(control(CMD_MUTE), BM_CLICK, 0, 0);
    EXPECT_TRUE(queue->player().mute());
    EXPECT_EQ(::SendMessageW(control(CMD_MUTE), BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_TRUE(isChecked(CMD_MUTE));
    EXPECT_TRUE(press('M'));
    EXPECT_FALSE(queue->player().mute());
    EXPECT_EQ(::SendMessageW(control(CMD_MUTE), BM_GETCHECK, 0, 0), BST_UNCHECKED);
}

TEST_F(Window, what_is_muted_is_not_heard) {
    command(CMD_MUTE);
    const std::size_t before = recording.now();
    queue->play(0);
    (void)pumpUntil([] { return false; }, 1s);
    EXPECT_FALSE(recording.soundSince(before));
    command(CMD_MUTE);
    EXPECT_TRUE(pumpUntil([&] { return recording.soundSince(before).has_value(); }, 5s));
}

TEST_F(Window, sets_the_balance_and_catches_its_middle) {
    slide(CTL_BALANCE, -60);
    EXPECT_EQ(queue->player().balance(), -60);
    slide(CTL_BALANCE, 3);
    EXPECT_EQ(queue->player().balance(), 0);
}

TEST_F(Window, sets_the_bands_of_the_equalizer) {
    EXPECT_FALSE(::IsWindowVisible(control(CTL_BANDS)));
    command(CMD_EQUALIZER);
    EXPECT_TRUE(::IsWindowVisible(control(CTL_BANDS)));
    EXPECT_TRUE(isChecked(CMD_EQUALIZER));
    slide(CTL_BANDS, -9, WM_VSCROLL); // upwards, in half decibels
    slide(CTL_BANDS + 9, 24, WM_VSCROLL);
    EXPECT_EQ(queue->player().equalizerGain(1), 4.5f);
    EXPECT_EQ(queue->player().equalizerGain(5), 0.0f);
    EXPECT_EQ(queue->player().equalizerGain(10), -12.0f);
    ::SendMessageW(control(CMD_EQUALIZER_RESET), BM_CLICK, 0, 0);
    for (long band = 1; band <= 10; ++band)
        EXPECT_EQ(queue->player().equalizerGain(band), 0.0f);
    EXPECT_EQ(::SendMessageW(control(CTL_BANDS), TBM_GETPOS, 0, 0), 0);
}

TEST_F(Window, takes_presets_and_names_the_one_that_is_set) {
    const HWND list = control(CTL_PRESET);
    const auto choose = [&](std::size_t index) {
        ::SendMessageW(list, CB_SETCURSEL, index, 0);
        ::SendMessageW(window->handle(), WM_COMMAND, MAKEWPARAM(CTL_PRESET, CBN_SELCHANGE),
                       reinterpret_cast<LPARAM>(list));
    };
    EXPECT_EQ(::SendMessageW(list, CB_GETCURSEL, 0, 0), 0) << "flat";
    const auto& presets = app::equalizerPresets();
    for (std::size_t index = presets.size(); index-- > 0;) {
        choose(index);
        for (long band = 1; band <= 10; ++band)
            EXPECT_EQ(queue->player().equalizerGain(band),
                      presets[index].gains[static_cast<std::size_t>(band) - 1]);
    }
    choose(1);
    slide(CTL_BANDS, 24, WM_VSCROLL);
    EXPECT_EQ(::SendMessageW(list, CB_GETCURSEL, 0, 0), static_cast<LRESULT>(presets.size()))
        << "one's own";
}

TEST_F(Window, leaves_arrows_to_sliders_and_lists_and_letters_to_lists_that_open) {
    slide(CTL_VOLUME, 50);
    queue->play(0);
    for (const int id : {CTL_VOLUME, CTL_BANDS})
        for (const WPARAM key : {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN})
            (void)press(key, id);
    for (const WPARAM key : {VK_UP, VK_DOWN})
        (void)press(key, CTL_LIST);
    (void)press('M', CTL_DEVICE);
    (void)press('S', CTL_PRESET);
    EXPECT_EQ(queue->player().volume(), 50);
    EXPECT_FALSE(queue->player().mute());
    EXPECT_LT(queue->positionMs(), 2000);
    EXPECT_TRUE(queue->isPlaying());
    EXPECT_TRUE(press(VK_RIGHT, CTL_LIST));
    EXPECT_NEAR(queue->positionMs(), 5000, 1000);
    EXPECT_TRUE(press(VK_SPACE, CTL_LIST));
    EXPECT_TRUE(queue->player().isPaused());
}

TEST_F(Window, obeys_the_keys_of_media_keyboards) {
    const auto media = [this](int key) {
        return ::SendMessageW(window->handle(), WM_APPCOMMAND, 0, MAKELPARAM(0, key));
    };
    EXPECT_TRUE(media(APPCOMMAND_MEDIA_PLAY));
    EXPECT_EQ(queue->player().state(), PLAY_PLAYING);
    EXPECT_TRUE(media(APPCOMMAND_MEDIA_PAUSE));
    EXPECT_EQ(queue->player().state(), PLAY_PAUSED);
    EXPECT_TRUE(media(APPCOMMAND_MEDIA_PLAY_PAUSE));
    EXPECT_EQ(queue->player().state(), PLAY_PLAYING);
    EXPECT_TRUE(media(APPCOMMAND_MEDIA_NEXTTRACK));
    ASSERT_TRUE(pumpUntil([this] { return queue->current() == 1 && queue->isPlaying(); }));
    EXPECT_TRUE(media(APPCOMMAND_MEDIA_STOP));
    EXPECT_TRUE(waitForEnd());
}

TEST_F(Window, shows_the_time_that_was_played_and_the_time_that_is_left) {
    queue->play(0);
    EXPECT_EQ(::SendMessageW(control(CTL_SEEK), TBM_GETRANGEMAX, 0, 0), 10000);
    command(CMD_PAUSE);
    slide(CTL_SEEK, 7250);
    EXPECT_EQ(textOf(control(CTL_PLAYED)), L"0:07");
    EXPECT_EQ(textOf(control(CTL_LEFT)), L"\x2212"
                                         L"0:02");
    EXPECT_EQ(::SendMessageW(control(CTL_SEEK), TBM_GETPOS, 0, 0), 7250);
    command(CMD_PAUSE);
    EXPECT_TRUE(
        pumpUntil([this] { return ::SendMessageW(control(CTL_SEEK), TBM_GETPOS, 0, 0) > 7500; }));
    EXPECT_EQ(app::clockText(3'723'999), L"1:02:03");
    EXPECT_EQ(app::clockText(-5), L"0:00");
}

TEST_F(Window, jumps_to_where_its_bar_is_clicked) {
    queue->play(0);
    command(CMD_PAUSE);
    const HWND bar = control(CTL_SEEK);
    RECT area{};
    ::GetClientRect(bar, &area);
    const LPARAM point = MAKELPARAM(area.right * 3 / 4, area.bottom / 2);
    ::SendMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, point);
    EXPECT_LT(queue->positionMs(), 1000) << "not before the button is released";
    EXPECT_EQ(textOf(control(CTL_PLAYED)).substr(0, 3), L"0:0");
    ::SendMessageW(bar, WM_LBUTTONUP, 0, point);
    EXPECT_NEAR(queue->positionMs(), 7600, 400);
}

TEST_F(Window, meters_the_level_of_what_is_heard) {
    const HWND meter = ::FindWindowExW(window->handle(), nullptr, nullptr, L"Level");
    ASSERT_TRUE(meter);
    const auto lit = [meter] {
        RECT area{};
        ::GetWindowRect(meter, &area);
        const HDC screen = ::GetDC(nullptr);
        bool found = false;
        for (int x = area.left; x < area.right && !found; ++x)
            found =
                ::GetPixel(screen, x, area.top + (area.bottom - area.top) / 4) == RGB(86, 196, 120);
        ::ReleaseDC(nullptr, screen);
        return found;
    };
    EXPECT_FALSE(lit());
    queue->play(0);
    EXPECT_TRUE(pumpUntil(lit));
    command(CMD_PAUSE);
    EXPECT_TRUE(pumpUntil([&] { return !lit(); }));
}

TEST_F(Window, marks_the_next_file_when_it_is_heard_without_a_gap) {
    queue->clear();
    queue->add(file(signal(2 * 44100)));
    queue->add(file(signal(10 * 44100, 2)));
    queue->play(0);
    ASSERT_TRUE(pumpUntil([this] { return queue->current() == 1; }));
    EXPECT_EQ(line(0)[0], L' ');
    EXPECT_EQ(line(1)[0], L'\x25B6');
    EXPECT_EQ(::SendMessageW(control(CTL_SEEK), TBM_GETRANGEMAX, 0, 0), 10000);
    EXPECT_LT(queue->positionMs(), 1000);
}

TEST_F(Window, repeats_a_track) {
    EXPECT_TRUE(press('L'));
    EXPECT_TRUE(queue->looping());
    EXPECT_TRUE(isChecked(CMD_LOOP));
    command(CMD_LOOP);
    EXPECT_FALSE(queue->looping());
}

TEST_F(Window, lists_the_devices_anew_and_goes_on_with_the_one_that_is_chosen) {
    const HWND devices = control(CTL_DEVICE);
    const LRESULT count = ::SendMessageW(devices, CB_GETCOUNT, 0, 0);
    ASSERT_GT(count, 1);
    queue->play(0, 3000);
    const auto notify = [&](WORD notification) {
        ::SendMessageW(window->handle(), WM_COMMAND, MAKEWPARAM(CTL_DEVICE, notification),
                       reinterpret_cast<LPARAM>(devices));
    };
    notify(CBN_DROPDOWN);
    EXPECT_EQ(::SendMessageW(devices, CB_GETCOUNT, 0, 0), count);
    ::SendMessageW(devices, CB_SETCURSEL, 1, 0);
    notify(CBN_SELCHANGE);
    ASSERT_TRUE(pumpUntil([this] { return queue->isPlaying(); }));
    EXPECT_NEAR(queue->positionMs(), 3000, 600);
}

TEST_F(Window, switches_the_look_of_the_graph_by_a_click_on_it) {
    const HWND graph = ::FindWindowExW(window->handle(), nullptr, L"AtlAxWin", nullptr);
    RECT area{};
    ::GetWindowRect(graph, &area);
    POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    ::ScreenToClient(window->handle(), &middle);
    command(CMD_SPECTRUM);
    std::vector<bool> waveform;
    for (int count = 0; count < 4; ++count) {
        ::SendMessageW(window->handle(), WM_PARENTNOTIFY, WM_LBUTTONDOWN,
                       MAKELPARAM(middle.x, middle.y));
        waveform.push_back(isChecked(CMD_WAVEFORM));
    }
    EXPECT_EQ(std::count(waveform.begin(), waveform.end(), true), 2);
    EXPECT_TRUE(isChecked(CMD_SPECTRUM));
    const bool decibels = isChecked(CMD_DECIBELS);
    EXPECT_TRUE(press(VK_F4));
    EXPECT_NE(isChecked(CMD_DECIBELS), decibels);
}

TEST_F(Window, remembers_its_sound_for_the_next_run) {
    const app::Settings before = app::Settings::load();
    options.pictureFile.clear();
    open();
    slide(CTL_VOLUME, 35);
    slide(CTL_BANDS + 3, -7, WM_VSCROLL);
    command(CMD_LOOP);
    ::SendMessageW(window->handle(), WM_CLOSE, 0, 0);
    options.pictureFile = L"unused";
    open();
    EXPECT_EQ(queue->player().volume(), 35);
    EXPECT_EQ(::SendMessageW(control(CTL_VOLUME), TBM_GETPOS, 0, 0), 35);
    EXPECT_EQ(queue->player().equalizerGain(4), 3.5f);
    EXPECT_EQ(queue->looping(), !before.loop);
    before.save();
}

TEST_F(Window, asks_the_player_to_recover_and_to_end_cleanly) {
    const app::_cPlayerPtr player(queue->player().control());
    VARIANT_BOOL value = VARIANT_FALSE;
    player->get_Recover(&value);
    EXPECT_EQ(value, VARIANT_TRUE);
    player->get_CleanEnd(&value);
    EXPECT_EQ(value, VARIANT_TRUE);
}

} // namespace
} // namespace corvina::test
