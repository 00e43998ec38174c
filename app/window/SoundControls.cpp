#include "window/SoundControls.h"

#include "window/Commands.h"

#include <algorithm>
#include <cmath>

namespace corvina::app {

namespace {

constexpr long volumeStep = 5;
// Near its middle the slider means the middle.
constexpr long middle = 4;
constexpr float tenthsOfDecibel = 10;

} // namespace

SoundControls::SoundControls(PlayerClient& player, PlayerControls& controls, Settings& settings,
                             HMENU menu)
    : player_(player), controls_(controls), settings_(settings), menu_(menu) {
    setVolume(static_cast<long>(settings.volume));
    setMute(settings.mute);
    setBalance(settings.balance);
    controls_.transport().setBalance(settings.balance);
    BandGains gains{};
    std::ranges::transform(settings.equalizer, gains.begin(), [](long tenths) {
        return static_cast<float>(tenths) / tenthsOfDecibel;
    });
    controls_.equalizer().setGains(gains);
    setGains(gains);
    showEqualizer(settings.equalizerShown);
}

bool SoundControls::carryOut(int command) {
    switch (command) {
    case CMD_LOUDER:
        changeVolume(volumeStep);
        return true;
    case CMD_QUIETER:
        changeVolume(-volumeStep);
        return true;
    case CMD_MUTE:
        setMute(!settings_.mute);
        return true;
    case CMD_EQUALIZER:
        showEqualizer(!settings_.equalizerShown);
        return true;
    case CMD_EQUALIZER_RESET:
        controls_.equalizer().setGains({});
        setGains({});
        return true;
    default:
        return false;
    }
}

bool SoundControls::onSlider(HWND slider) {
    Transport& transport = controls_.transport();
    if (transport.isVolume(slider))
        setVolume(transport.volume());
    else if (transport.isBalance(slider))
        setBalance(transport.balance());
    else if (controls_.equalizer().isSlider(slider)) {
        controls_.equalizer().slidersMoved();
        setGains(controls_.equalizer().gains());
    } else
        return false;
    return true;
}

void SoundControls::takePreset() {
    if (const auto gains = controls_.equalizer().selectedPreset()) {
        controls_.equalizer().setGains(*gains);
        setGains(*gains);
    }
}

void SoundControls::changeVolume(long step) {
    setVolume(std::clamp(static_cast<long>(settings_.volume) + step, 0L, 100L));
}

void SoundControls::setVolume(long percent) {
    settings_.volume = static_cast<DWORD>(percent);
    player_.setVolume(percent);
    controls_.transport().setVolume(percent);
}

void SoundControls::setMute(bool on) {
    settings_.mute = on;
    player_.setMute(on);
    controls_.transport().setMute(on);
    CheckMenuItem(menu_, CMD_MUTE, on ? MF_CHECKED : MF_UNCHECKED);
}

void SoundControls::setBalance(long value) {
    settings_.balance = std::abs(value) < middle ? 0 : value;
    player_.setBalance(settings_.balance);
}

void SoundControls::setGains(const BandGains& gains) {
    for (std::size_t band = 0; band < gains.size(); ++band) {
        settings_.equalizer[band] = std::lround(gains[band] * tenthsOfDecibel);
        player_.setEqualizerGain(static_cast<long>(band) + 1, gains[band]);
    }
}

void SoundControls::showEqualizer(bool shown) {
    settings_.equalizerShown = shown;
    controls_.equalizer().show(shown);
    controls_.transport().setEqualizerShown(shown);
    CheckMenuItem(menu_, CMD_EQUALIZER, shown ? MF_CHECKED : MF_UNCHECKED);
}

} // namespace corvina::app
