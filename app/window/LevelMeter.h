#pragma once

// Two bars, left above right, as long as the sound is loud: in decibels, from -48 to full scale.

#include "window/PaintedWindow.h"

#include <array>
#include <utility>

namespace corvina::app {

class LevelMeter final : public PaintedWindow {
public:
    explicit LevelMeter(HWND parent);

    // Peaks of both channels, 0 to 100 in parts of full scale.
    void show(long left, long right);
    [[nodiscard]] std::array<long, 2> levels() const noexcept { return levels_; }

private:
    void paint(HDC dc, const RECT& area) override;

    std::array<long, 2> levels_{};
};

} // namespace corvina::app
