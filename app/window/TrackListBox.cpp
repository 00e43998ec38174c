#include "window/TrackListBox.h"

#include "window/Commands.h"

#include <algorithm>

#include <commctrl.h>

namespace corvina::app {

TrackListBox::TrackListBox(const ChildControls& controls)
    : parent_(controls.parent()),
      list_(controls.add(L"LISTBOX", L"",
                         LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP, CTL_LIST,
                         WS_EX_CLIENTEDGE)) {
    setAccessibleName(list_, L"Tracks");
    MakeDragList(list_);
}

void TrackListBox::setLines(const std::vector<Line>& lines, std::size_t current) {
    const int chosen = selected();
    const auto top = static_cast<WPARAM>(SendMessageW(list_, LB_GETTOPINDEX, 0, 0));
    SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list_, LB_RESETCONTENT, 0, 0);
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const auto& [name, failure] = lines[index];
        const std::wstring line = index == current  ? L"\x25B6  " + name
                                  : failure.empty() ? L"     " + name
                                                    : L"\x2717  " + name + L" \x2013 " + failure;
        SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    }
    SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
    SendMessageW(list_, LB_SETTOPINDEX, top, 0);
    SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list_, nullptr, TRUE);
}

int TrackListBox::selected() const {
    return static_cast<int>(SendMessageW(list_, LB_GETCURSEL, 0, 0));
}

void TrackListBox::select(std::size_t index) {
    SendMessageW(list_, LB_SETCURSEL, index, 0);
}

LRESULT TrackListBox::dragMessage(LPARAM information, std::optional<Drop>& drop) {
    const auto& drag = *reinterpret_cast<const DRAGLISTINFO*>(information);
    if (drag.hWnd != list_)
        return 0;
    // Before which line it would be dropped; behind the last it is none.
    const int before = LBItemFromPt(list_, drag.ptCursor, drag.uNotification == DL_DRAGGING);
    switch (drag.uNotification) {
    case DL_BEGINDRAG:
        return selected() >= 0;
    case DL_DRAGGING:
        DrawInsert(parent_, list_, before);
        return DL_MOVECURSOR;
    case DL_DROPPED: {
        DrawInsert(parent_, list_, -1);
        const auto from = static_cast<std::size_t>(std::max(selected(), 0));
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

} // namespace corvina::app
