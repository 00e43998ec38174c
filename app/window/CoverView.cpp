#include "window/CoverView.h"

#include "window/ChildControls.h"

#include <algorithm>
#include <utility>

namespace corvina::app {

CoverView::CoverView(HWND parent) : PaintedWindow(parent) {
    setAccessibleName(window(), L"Cover");
    ShowWindow(window(), SW_HIDE);
}

void CoverView::show(IPicturePtr picture) {
    picture_ = std::move(picture);
    ShowWindow(window(), picture_ ? SW_SHOWNA : SW_HIDE);
    redraw();
}

void CoverView::paint(HDC dc, const RECT& area) {
    FillRect(dc, &area, GetSysColorBrush(COLOR_BTNFACE));
    OLE_XSIZE_HIMETRIC width = 0;
    OLE_YSIZE_HIMETRIC height = 0;
    if (!picture_ || FAILED(picture_->get_Width(&width)) || FAILED(picture_->get_Height(&height)) ||
        width <= 0 || height <= 0)
        return;
    const double scale = std::min(static_cast<double>(area.right) / width,
                                  static_cast<double>(area.bottom) / height);
    const int shownWidth = std::max(1, static_cast<int>(width * scale));
    const int shownHeight = std::max(1, static_cast<int>(height * scale));
    SetStretchBltMode(dc, HALFTONE);
    SetBrushOrgEx(dc, 0, 0, nullptr);
    // A picture's own heights run upwards.
    picture_->Render(dc, (area.right - shownWidth) / 2, (area.bottom - shownHeight) / 2, shownWidth,
                     shownHeight, 0, height, width, -height, nullptr);
}

} // namespace corvina::app
