#pragma once

// Ten sliders for the bands of the equalizer and the choice of a preset. It can be hidden.

#include "window/ChildControls.h"

#include <array>
#include <optional>

namespace corvina::app {

// Decibels of the ten bands, from 31.25 Hz to 16 kHz.
using BandGains = std::array<float, 10>;

struct EqualizerPreset {
    const wchar_t* name;
    BandGains gains;
};
// The first one is flat.
[[nodiscard]] const std::array<EqualizerPreset, 7>& equalizerPresets() noexcept;

class EqualizerPanel {
public:
    explicit EqualizerPanel(const ChildControls& controls);

    void show(bool shown);
    [[nodiscard]] bool isShown() const noexcept { return shown_; }

    void setGains(const BandGains& gains);
    [[nodiscard]] BandGains gains() const;
    // The sliders follow a hand; the texts and the name of the preset follow the sliders.
    void slidersMoved();
    [[nodiscard]] bool isSlider(HWND window) const;
    // None if what is selected is no preset.
    [[nodiscard]] std::optional<BandGains> selectedPreset() const;

    // Returns the height it takes, 0 while it is hidden.
    int layOut(int left, int top, int width);

private:
    struct Band {
        HWND decibels;
        HWND slider;
        HWND frequency;
    };

    const ChildControls& controls_;
    HWND presetLabel_, preset_, reset_;
    std::array<Band, 10> bands_{};
    bool shown_ = true;
};

} // namespace corvina::app
