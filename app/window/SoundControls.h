#pragma once

// Volume, mute, balance and equalizer: the sliders and commands of the window, the player that they
// change, and the settings that remember them.

#include "PlayerClient.h"
#include "window/PlayerControls.h"
#include "window/Settings.h"

namespace corvina::app {

class SoundControls {
public:
    // All must outlive this object. menu: whose lines are checked.
    SoundControls(PlayerClient& player, PlayerControls& controls, Settings& settings, HMENU menu);

    // Whether it was a command of these.
    bool carryOut(int command);
    // Takes over where a slider was moved to, if it is one of these.
    bool onSlider(HWND slider);
    void takePreset();
    void changeVolume(long step);

private:
    void setVolume(long percent);
    void setMute(bool on);
    void setBalance(long value);
    void setGains(const BandGains& gains);
    void showEqualizer(bool shown);

    PlayerClient& player_;
    PlayerControls& controls_;
    Settings& settings_;
    HMENU menu_;
};

} // namespace corvina::app
