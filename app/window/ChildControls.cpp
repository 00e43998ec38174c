#include "window/ChildControls.h"

#include <algorithm>

#include <commctrl.h>

namespace corvina::app {

namespace {

void layOutRow(std::span<const RowItem> row, int left, int top, int width, int gap, int height) {
    int least = 0;
    int wanted = 0;
    for (const RowItem& item : row) {
        least += item.least;
        wanted += item.wanted;
    }
    const int rest = width - gap * static_cast<int>(row.size() - 1);
    int x = left;
    for (const RowItem& item : row) {
        int taken = item.wanted;
        if (rest < least)
            taken = MulDiv(item.least, std::max(rest, 0), least);
        else if (rest < wanted)
            taken = item.least + MulDiv(item.wanted - item.least, rest - least, wanted - least);
        else if (&item == &row.back())
            taken = left + width - x;
        place(item.window, x, top + (height - item.height) / 2, taken,
              std::max(item.height, item.listHeight));
        x += taken + gap;
    }
}

} // namespace

ChildControls::ChildControls(HWND parent) : parent_(parent) {
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
}

HWND ChildControls::add(const wchar_t* kind, const wchar_t* text, DWORD style, int id,
                        DWORD extendedStyle) const {
    const HWND control = CreateWindowExW(
        extendedStyle, kind, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
    return control;
}

HWND ChildControls::addLabel(const wchar_t* text, DWORD style) const {
    return add(L"STATIC", text, SS_NOPREFIX | style);
}

HWND ChildControls::addSlider(const wchar_t* name, DWORD style, int id, int least, int most) const {
    const HWND slider = add(TRACKBAR_CLASSW, name, TBS_NOTICKS | TBS_BOTH | WS_TABSTOP | style, id);
    setAccessibleName(slider, name);
    SendMessageW(slider, TBM_SETRANGEMIN, FALSE, least);
    SendMessageW(slider, TBM_SETRANGEMAX, TRUE, most);
    return slider;
}

int ChildControls::scaled(int length) const noexcept {
    return MulDiv(length, dpi_, 96);
}

void setText(HWND control, const std::wstring& text) {
    const int length = GetWindowTextLengthW(control);
    std::wstring shown(static_cast<std::size_t>(length) + 1, L'\0');
    shown.resize(static_cast<std::size_t>(GetWindowTextW(control, shown.data(), length + 1)));
    if (shown != text)
        SetWindowTextW(control, text.c_str());
}

void place(HWND control, int left, int top, int width, int height) {
    // Copied pixels of the old place would be left behind where another control has moved
    // meanwhile.
    SetWindowPos(control, nullptr, left, top, std::max(width, 0), std::max(height, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

int layOutRows(std::span<const RowItem> items, int left, int top, int width, int gap) {
    int y = top;
    for (std::size_t first = 0; first < items.size();) {
        std::size_t end = first;
        int used = -gap;
        int height = 0;
        while (end < items.size() && (end == first || used + gap + items[end].least <= width)) {
            used += gap + items[end].least;
            height = std::max(height, items[end].height);
            ++end;
        }
        layOutRow(items.subspan(first, end - first), left, y, width, gap, height);
        y += height + gap;
        first = end;
    }
    return y - top - gap;
}

} // namespace corvina::app
