#include "window/PlayerControls.h"

#include "window/Commands.h"

#include <algorithm>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr const wchar_t* playText = L"Play";
constexpr const wchar_t* pauseText = L"Pause";

void setText(HWND control, const std::wstring& text) {
    const int length = GetWindowTextLengthW(control);
    std::wstring shown(static_cast<std::size_t>(length) + 1, L'\0');
    shown.resize(static_cast<std::size_t>(GetWindowTextW(control, shown.data(), length + 1)));
    if (shown != text) // the same text again would flicker
        SetWindowTextW(control, text.c_str());
}

} // namespace

PlayerControls::PlayerControls(HWND parent) : parent_(parent) {
    dpi_ = GetDeviceCaps(ScreenContext(GetDC(nullptr)).get(), LOGPIXELSX);

    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    font_.reset(CreateFontIndirectW(&metrics.lfMessageFont));
    metrics.lfMessageFont.lfWeight = FW_BOLD;
    metrics.lfMessageFont.lfHeight = MulDiv(metrics.lfMessageFont.lfHeight, 5, 4);
    boldFont_.reset(CreateFontIndirectW(&metrics.lfMessageFont));

    const INITCOMMONCONTROLSEX wanted{sizeof wanted, ICC_BAR_CLASSES};
    InitCommonControlsEx(&wanted);

    title_ = add(0, L"STATIC", L"Corvina", SS_LEFT | SS_NOPREFIX | SS_ENDELLIPSIS, 0);
    SendMessageW(title_, WM_SETFONT, reinterpret_cast<WPARAM>(boldFont_.get()), FALSE);
    details_ = add(0, L"STATIC", L"", SS_LEFT | SS_NOPREFIX | SS_ENDELLIPSIS, 0);
    time_ = add(0, L"STATIC", L"", SS_RIGHT | SS_NOPREFIX, 0);
    seek_ = add(0, TRACKBAR_CLASSW, L"", TBS_HORZ | TBS_NOTICKS | TBS_BOTH | WS_TABSTOP, CTL_SEEK);
    previous_ = add(0, L"BUTTON", L"Previous", WS_TABSTOP, CMD_PREVIOUS);
    play_ = add(0, L"BUTTON", playText, WS_TABSTOP, CMD_PAUSE);
    stop_ = add(0, L"BUTTON", L"Stop", WS_TABSTOP, CMD_STOP);
    next_ = add(0, L"BUTTON", L"Next", WS_TABSTOP, CMD_NEXT);
    device_ = add(0, L"COMBOBOX", L"", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, CTL_DEVICE);
    SendMessageW(device_, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), scaled(18));
    list_ = add(WS_EX_CLIENTEDGE, L"LISTBOX", L"",
                LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP, CTL_LIST);
    MakeDragList(list_);
    message_ = add(0, STATUSCLASSNAMEW, L"", SBARS_SIZEGRIP, 0);
}

HWND PlayerControls::add(DWORD extendedStyle, const wchar_t* kind, const wchar_t* text, DWORD style,
                         int id) {
    const HWND control = CreateWindowExW(
        extendedStyle, kind, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
    return control;
}

int PlayerControls::scaled(int length) const noexcept {
    return MulDiv(length, dpi_, 96);
}

void PlayerControls::place(HWND control, int left, int top, int width, int height) {
    // Copied pixels of the old place would be left behind where another control has moved
    // meanwhile.
    SetWindowPos(control, nullptr, left, top, std::max(width, 0), std::max(height, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

RECT PlayerControls::layOut() {
    RECT area{};
    GetClientRect(parent_, &area);
    SendMessageW(message_, WM_SIZE, 0, 0); // puts itself at the bottom
    RECT bar{};
    GetWindowRect(message_, &bar);

    const int margin = scaled(10);
    const int left = margin;
    const int width = area.right - 2 * margin;
    const int bottom = area.bottom - (bar.bottom - bar.top) - margin;
    const int graphHeight = std::max(scaled(60), (bottom - margin) * 2 / 5);
    const int timeWidth = std::min(scaled(120), width / 2);

    int top = margin + graphHeight + scaled(8);
    place(title_, left, top, width - timeWidth - margin, scaled(22));
    place(time_, left + width - timeWidth, top + scaled(3), timeWidth, scaled(18));
    top += scaled(23);
    place(details_, left, top, width, scaled(18));
    top += scaled(20);
    place(seek_, left - scaled(6), top, width + scaled(12), scaled(28));
    top += scaled(32);

    top += layOutButtons(left, top, width) + scaled(10);
    place(list_, left, top, width, bottom - top);
    RedrawWindow(parent_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    return {left, margin, left + std::max(width, 0), margin + graphHeight};
}

int PlayerControls::layOutButtons(int left, int top, int width) {
    const int gap = scaled(6);
    const int height = scaled(26);
    const int listHeight = scaled(300); // of the devices, when it is open
    const int leastDevice = scaled(110);
    const int buttonWidth = std::clamp((width - 3 * gap) / 4, 0, scaled(72));
    int x = left;
    for (const HWND button : {previous_, play_, stop_, next_}) {
        place(button, x, top, buttonWidth, height);
        x += buttonWidth + gap;
    }
    const int beside = left + width - x - scaled(4);
    if (beside >= leastDevice) {
        const int deviceWidth = std::min(beside, scaled(220));
        place(device_, left + width - deviceWidth, top + scaled(1), deviceWidth, listHeight);
        return height;
    }
    place(device_, left, top + height + gap, width, listHeight);
    return 2 * height + gap;
}

void PlayerControls::setHeadline(const std::wstring& title, const std::wstring& details) {
    setText(title_, title);
    setText(details_, details);
}

void PlayerControls::setTime(const std::wstring& text) {
    setText(time_, text);
}

void PlayerControls::setPlaying(bool playing) {
    setText(play_, playing ? pauseText : playText);
}

void PlayerControls::setMessage(const std::wstring& text) {
    setText(message_, text);
}

void PlayerControls::setFiles(const std::vector<FileLine>& files, std::size_t current) {
    const int selected = selectedFile();
    SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list_, LB_RESETCONTENT, 0, 0);
    for (std::size_t index = 0; index < files.size(); ++index) {
        const auto& [name, failure] = files[index];
        const std::wstring line = index == current  ? L"\x25B6  " + name
                                  : failure.empty() ? L"     " + name
                                                    : L"\x2717  " + name + L" \x2013 " + failure;
        SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    }
    SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
    SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list_, nullptr, TRUE);
}

int PlayerControls::selectedFile() const {
    return static_cast<int>(SendMessageW(list_, LB_GETCURSEL, 0, 0));
}

void PlayerControls::selectFile(std::size_t index) {
    SendMessageW(list_, LB_SETCURSEL, index, 0);
}

LRESULT PlayerControls::dragMessage(LPARAM information, std::optional<Drop>& drop) {
    const auto& drag = *reinterpret_cast<const DRAGLISTINFO*>(information);
    if (drag.hWnd != list_)
        return 0;
    // Before which line it would be dropped; behind the last it is none.
    const int before = LBItemFromPt(list_, drag.ptCursor, drag.uNotification == DL_DRAGGING);
    switch (drag.uNotification) {
    case DL_BEGINDRAG:
        return selectedFile() >= 0;
    case DL_DRAGGING:
        DrawInsert(parent_, list_, before);
        return DL_MOVECURSOR;
    case DL_DROPPED: {
        DrawInsert(parent_, list_, -1);
        const auto from = static_cast<std::size_t>(std::max(selectedFile(), 0));
        const auto count = static_cast<std::size_t>(SendMessageW(list_, LB_GETCOUNT, 0, 0));
        const std::size_t place = before >= 0 ? static_cast<std::size_t>(before) : count;
        if (count > 0)
            drop = Drop{.from = from, .to = from < place ? place - 1 : place};
        return 0;
    }
    default:
        DrawInsert(parent_, list_, -1);
        return 0;
    }
}

void PlayerControls::setDevices(const std::vector<std::wstring>& names, int selected) {
    for (const std::wstring& name : names)
        SendMessageW(device_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(device_, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

int PlayerControls::selectedDevice() const {
    return static_cast<int>(SendMessageW(device_, CB_GETCURSEL, 0, 0));
}

bool PlayerControls::deviceHasFocus() const {
    return GetFocus() == device_;
}

void PlayerControls::setSeekRange(long seconds) {
    SendMessageW(seek_, TBM_SETRANGEMAX, TRUE, std::max(seconds, 0L));
    EnableWindow(seek_, seconds > 0);
}

void PlayerControls::setSeekPosition(long second) {
    if (GetCapture() != seek_) // not while it is being dragged
        SendMessageW(seek_, TBM_SETPOS, TRUE, second);
}

long PlayerControls::seekPosition() const {
    return static_cast<long>(SendMessageW(seek_, TBM_GETPOS, 0, 0));
}

} // namespace corvina::app
