#include "window/Headline.h"

namespace corvina::app {

Headline::Headline(const ChildControls& controls)
    : controls_(controls), cover_(controls.parent()),
      title_(controls.addLabel(L"Corvina", SS_ENDELLIPSIS)),
      details_(controls.addLabel(L"", SS_ENDELLIPSIS)) {
    SendMessageW(title_, WM_SETFONT, reinterpret_cast<WPARAM>(controls.boldFont()), FALSE);
}

void Headline::setText(const std::wstring& title, const std::wstring& details) {
    app::setText(title_, title);
    app::setText(details_, details);
}

int Headline::layOut(int left, int top, int width) {
    const int titleHeight = controls_.scaled(22);
    const int detailsHeight = controls_.scaled(18);
    const int coverSize = controls_.scaled(72);
    const int gap = controls_.scaled(8);
    place(cover_.window(), left, top, coverSize, coverSize);
    const bool besideCover = cover_.hasPicture();
    const int x = besideCover ? left + coverSize + gap : left;
    const int y = besideCover ? top + (coverSize - titleHeight - detailsHeight) / 2 : top;
    place(title_, x, y, left + width - x, titleHeight);
    place(details_, x, y + titleHeight, left + width - x, detailsHeight);
    return besideCover ? coverSize : titleHeight + detailsHeight;
}

} // namespace corvina::app
