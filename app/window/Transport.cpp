#include "window/Transport.h"

#include "window/Commands.h"

#include <array>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr DWORD pressedButton = BS_AUTOCHECKBOX | BS_PUSHLIKE | WS_TABSTOP;
constexpr const wchar_t* playText = L"Play";
constexpr const wchar_t* pauseText = L"Pause";

void setPressed(HWND button, bool on) {
    SendMessageW(button, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
}

int heightOf(HWND control) {
    RECT area{};
    GetWindowRect(control, &area);
    return area.bottom - area.top;
}

long positionOf(HWND slider) {
    return static_cast<long>(SendMessageW(slider, TBM_GETPOS, 0, 0));
}

} // namespace

Transport::Transport(const ChildControls& controls)
    : controls_(controls),
      previous_(controls.add(L"BUTTON", L"Previous", WS_TABSTOP, CMD_PREVIOUS)),
      play_(controls.add(L"BUTTON", playText, WS_TABSTOP, CMD_PAUSE)),
      stop_(controls.add(L"BUTTON", L"Stop", WS_TABSTOP, CMD_STOP)),
      next_(controls.add(L"BUTTON", L"Next", WS_TABSTOP, CMD_NEXT)),
      mute_(controls.add(L"BUTTON", L"Mute", pressedButton, CMD_MUTE)),
      volumeLabel_(controls.addLabel(L"Volume")),
      volume_(controls.addSlider(L"Volume", TBS_HORZ, CTL_VOLUME, 0, 100)),
      meter_(controls.parent()), balanceLabel_(controls.addLabel(L"Balance")),
      balance_(controls.addSlider(L"Balance", TBS_HORZ, CTL_BALANCE, -100, 100)),
      equalizer_(controls.add(L"BUTTON", L"Equalizer", pressedButton, CMD_EQUALIZER)),
      deviceLabel_(controls.addLabel(L"Output")),
      device_(
          controls.add(L"COMBOBOX", L"", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, CTL_DEVICE)) {
    setAccessibleName(device_, L"Output device");
    for (const HWND slider : {volume_, balance_}) {
        SendMessageW(slider, TBM_SETLINESIZE, 0, 5);
        SendMessageW(slider, TBM_SETPAGESIZE, 0, 10);
    }
}

void Transport::setPlaying(bool playing) {
    setText(play_, playing ? pauseText : playText);
}

void Transport::setMute(bool on) {
    setPressed(mute_, on);
}

void Transport::setEqualizerShown(bool on) {
    setPressed(equalizer_, on);
}

void Transport::setVolume(long percent) {
    SendMessageW(volume_, TBM_SETPOS, TRUE, percent);
}

void Transport::setBalance(long value) {
    SendMessageW(balance_, TBM_SETPOS, TRUE, value);
}

long Transport::volume() const {
    return positionOf(volume_);
}

long Transport::balance() const {
    return positionOf(balance_);
}

void Transport::setDevices(const std::vector<std::wstring>& names, int selected) {
    SendMessageW(device_, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& name : names)
        SendMessageW(device_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(device_, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

int Transport::selectedDevice() const {
    return static_cast<int>(SendMessageW(device_, CB_GETCURSEL, 0, 0));
}

int Transport::layOut(int left, int top, int width) {
    const auto scaled = [this](int length) { return controls_.scaled(length); };
    const int gap = scaled(6);
    const int height = scaled(26);
    const int textHeight = scaled(16);
    const int listHeight = scaled(300); // of the devices, when it is open
    const auto button = [&](HWND window) {
        return RowItem{window, scaled(54), scaled(66), height};
    };
    const std::array rows{
        button(previous_),
        button(play_),
        button(stop_),
        button(next_),
        RowItem{mute_, scaled(46), scaled(50), height},
        RowItem{volumeLabel_, scaled(46), scaled(46), textHeight},
        RowItem{volume_, scaled(80), scaled(110), height},
        RowItem{meter_.window(), scaled(80), scaled(100), scaled(20)},
    };
    const std::array below{
        RowItem{balanceLabel_, scaled(48), scaled(48), textHeight},
        RowItem{balance_, scaled(80), scaled(110), height},
        RowItem{equalizer_, scaled(76), scaled(80), height},
        RowItem{deviceLabel_, scaled(44), scaled(44), textHeight},
        RowItem{device_, scaled(120), scaled(200), heightOf(device_), listHeight},
    };
    const int first = layOutRows(rows, left, top, width, gap);
    return first + gap + layOutRows(below, left, top + first + gap, width, gap);
}

} // namespace corvina::app
