#pragma once

// The two rows below the seek bar: buttons, volume and level, balance and output device. They wrap
// in a narrow window.

#include "window/ChildControls.h"
#include "window/LevelMeter.h"

#include <string>
#include <vector>

namespace corvina::app {

class Transport {
public:
    explicit Transport(const ChildControls& controls);

    void setPlaying(bool playing);
    [[nodiscard]] LevelMeter& meter() noexcept { return meter_; }

    // Of the buttons that stay pressed, and the sliders.
    void setMute(bool on);
    void setEqualizerShown(bool on);
    void setVolume(long percent);
    void setBalance(long value);
    [[nodiscard]] long volume() const;
    [[nodiscard]] long balance() const;
    [[nodiscard]] bool isVolume(HWND window) const noexcept { return window == volume_; }
    [[nodiscard]] bool isBalance(HWND window) const noexcept { return window == balance_; }

    void setDevices(const std::vector<std::wstring>& names, int selected);
    [[nodiscard]] int selectedDevice() const;

    int layOut(int left, int top, int width);

private:
    const ChildControls& controls_;
    HWND previous_, play_, stop_, next_, mute_, volumeLabel_, volume_;
    LevelMeter meter_;
    HWND balanceLabel_, balance_, equalizer_, deviceLabel_, device_;
};

} // namespace corvina::app
