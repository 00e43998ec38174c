#pragma once

// A child window that paints its whole picture itself, without flicker.

#include <windows.h>

namespace corvina::app {

class PaintedWindow {
public:
    explicit PaintedWindow(HWND parent);
    virtual ~PaintedWindow();
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    // Null once the parent was destroyed.
    [[nodiscard]] HWND window() const noexcept { return window_; }

protected:
    void redraw() { InvalidateRect(window_, nullptr, FALSE); }
    virtual void paint(HDC dc, const RECT& area) = 0;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void onPaint();

    HWND window_ = nullptr;
};

} // namespace corvina::app
