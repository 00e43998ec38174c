#include "window/SeekBar.h"

#include "window/Commands.h"

#include <algorithm>
#include <utility>
#include <windowsx.h>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr long lineMs = 5000;
constexpr long pageMs = 30000;

// Takes the thumb to the place that was clicked, so that the click has hit the thumb.
LPARAM clickOnThumb(HWND slider, LPARAM clicked) {
    RECT thumb{};
    RECT channel{};
    SendMessageW(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    SendMessageW(slider, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    const POINT point{GET_X_LPARAM(clicked), GET_Y_LPARAM(clicked)};
    const int way = channel.right - channel.left - (thumb.right - thumb.left);
    if (PtInRect(&thumb, point) || way <= 0)
        return clicked;
    const int along = point.x - channel.left - (thumb.right - thumb.left) / 2;
    const auto most = static_cast<int>(SendMessageW(slider, TBM_GETRANGEMAX, 0, 0));
    SendMessageW(slider, TBM_SETPOS, TRUE, MulDiv(std::clamp(along, 0, way), most, way));
    SendMessageW(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    return MAKELPARAM((thumb.left + thumb.right) / 2, (thumb.top + thumb.bottom) / 2);
}

LRESULT CALLBACK sliderProcedure(HWND slider, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) {
    if (message == WM_LBUTTONDOWN && IsWindowEnabled(slider))
        lParam = clickOnThumb(slider, lParam);
    return DefSubclassProc(slider, message, wParam, lParam);
}

} // namespace

std::wstring clockText(long milliseconds) {
    const long seconds = std::max(milliseconds, 0L) / 1000;
    const auto twoDigits = [](long number) {
        return (number < 10 ? L"0" : L"") + std::to_wstring(number);
    };
    const std::wstring behindMinutes = L":" + twoDigits(seconds % 60);
    if (seconds < 3600)
        return std::to_wstring(seconds / 60) + behindMinutes;
    return std::to_wstring(seconds / 3600) + L":" + twoDigits(seconds / 60 % 60) + behindMinutes;
}

SeekBar::SeekBar(const ChildControls& controls)
    : controls_(controls), played_(controls.add(L"STATIC", L"", SS_NOPREFIX, CTL_PLAYED)),
      slider_(controls.addSlider(L"Position", TBS_HORZ, CTL_SEEK, 0, 0)),
      left_(controls.add(L"STATIC", L"", SS_RIGHT | SS_NOPREFIX, CTL_LEFT)) {
    SendMessageW(slider_, TBM_SETLINESIZE, 0, lineMs);
    SendMessageW(slider_, TBM_SETPAGESIZE, 0, pageMs);
    SetWindowSubclass(slider_, &sliderProcedure, 0, 0);
}

void SeekBar::show(long position, long duration) {
    if (GetCapture() == slider_)
        return;
    if (std::exchange(duration_, duration) != duration) {
        SendMessageW(slider_, TBM_SETRANGEMAX, TRUE, duration);
        EnableWindow(slider_, duration > 0);
    }
    SendMessageW(slider_, TBM_SETPOS, TRUE, position);
    showTimes(position);
}

void SeekBar::showDragged() {
    showTimes(position());
}

void SeekBar::showTimes(long position) {
    setText(played_, duration_ > 0 ? clockText(position) : L"");
    setText(left_, duration_ > 0 ? L"\x2212" + clockText(duration_ - position) : L"");
}

long SeekBar::position() const {
    return static_cast<long>(SendMessageW(slider_, TBM_GETPOS, 0, 0));
}

int SeekBar::layOut(int left, int top, int width) {
    const int height = controls_.scaled(28);
    const int textHeight = controls_.scaled(16);
    const int textWidth = std::min(controls_.scaled(54), width / 4);
    const int textTop = top + (height - textHeight) / 2;
    place(played_, left, textTop, textWidth, textHeight);
    place(slider_, left + textWidth, top, width - 2 * textWidth, height);
    place(left_, left + width - textWidth, textTop, textWidth, textHeight);
    return height;
}

} // namespace corvina::app
