#pragma once

// Where the sound is: a bar between the time that was played and the time that is left. A click
// anywhere on it takes the thumb there.

#include "window/ChildControls.h"

#include <string>

namespace corvina::app {

// "3:07", from an hour on "1:03:07".
[[nodiscard]] std::wstring clockText(long milliseconds);

class SeekBar {
public:
    explicit SeekBar(const ChildControls& controls);

    // Both in milliseconds; without a duration the bar is off. Nothing moves while it is dragged.
    void show(long position, long duration);
    // What the times say while the bar is dragged.
    void showDragged();
    [[nodiscard]] long position() const;
    [[nodiscard]] bool is(HWND window) const noexcept { return window == slider_; }
    int layOut(int left, int top, int width);

private:
    void showTimes(long position);

    const ChildControls& controls_;
    HWND played_;
    HWND slider_;
    HWND left_;
    long duration_ = -1;
};

} // namespace corvina::app
