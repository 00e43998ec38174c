#pragma once

// The picture that belongs to what plays, as large as fits into the window.

#include "PlayerClient.h"
#include "window/PaintedWindow.h"

namespace corvina::app {

class CoverView final : public PaintedWindow {
public:
    explicit CoverView(HWND parent);

    // Null for none.
    void show(IPicturePtr picture);
    [[nodiscard]] bool hasPicture() const noexcept { return picture_ != nullptr; }

private:
    void paint(HDC dc, const RECT& area) override;

    IPicturePtr picture_;
};

} // namespace corvina::app
