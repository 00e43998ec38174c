#include "window/GraphChoices.h"

#include "window/Commands.h"
#include "window/FileChoice.h"

#include <algorithm>
#include <array>

namespace corvina::app {

namespace {

constexpr std::array<GraphLook, 4> looks{{
    {.style = FREQUENCY_STYLE, .decibels = true, .octaves = true, .peaks = true},
    {.style = FREQUENCY_STYLE},
    {.style = AMPLITUDE_STYLE},
    {.style = AMPLITUDE_STYLE, .channels = true},
}};

} // namespace

GraphChoices::GraphChoices(GraphView& graph, Settings& settings, HWND window)
    : graph_(graph), settings_(settings), window_(window) {
    applyColors();
    apply();
}

bool GraphChoices::carryOut(int command) {
    const auto toggle = [this](bool Settings::*flag) {
        settings_.*flag = !(settings_.*flag);
        apply();
    };
    switch (command) {
    case CMD_SPECTRUM:
        setStyle(FREQUENCY_STYLE);
        return true;
    case CMD_WAVEFORM:
        setStyle(AMPLITUDE_STYLE);
        return true;
    case CMD_DECIBELS:
        toggle(&Settings::decibels);
        return true;
    case CMD_OCTAVES:
        toggle(&Settings::octaves);
        return true;
    case CMD_PEAKS:
        toggle(&Settings::peaks);
        return true;
    case CMD_CHANNELS:
        toggle(&Settings::channels);
        return true;
    case CMD_BAR_COLOR:
        changeColor(&Settings::barColor);
        return true;
    case CMD_CURVE_COLOR:
        changeColor(&Settings::curveColor);
        return true;
    case CMD_BACKGROUND_COLOR:
        changeColor(&Settings::backgroundColor);
        return true;
    default:
        return false;
    }
}

void GraphChoices::setStyle(AudioGraphStyle style) {
    settings_.graphStyle = style;
    apply();
}

// What a look leaves open, such as the bars of a waveform, stays as it was chosen.
void GraphChoices::showNextLook() {
    const GraphLook now = look();
    const auto same = [&now](const GraphLook& one) {
        if (one.style != now.style)
            return false;
        return one.style == AMPLITUDE_STYLE ? one.channels == now.channels
                                            : one.decibels == now.decibels;
    };
    const auto found = std::ranges::find_if(looks, same);
    const std::size_t next =
        found == looks.end() ? 0
                             : (static_cast<std::size_t>(found - looks.begin()) + 1) % looks.size();
    GraphLook wanted = looks[next];
    if (wanted.style == AMPLITUDE_STYLE) {
        wanted.decibels = now.decibels;
        wanted.octaves = now.octaves;
        wanted.peaks = now.peaks;
    } else {
        wanted.channels = now.channels;
    }
    setLook(wanted);
}

GraphLook GraphChoices::look() const {
    return {.style = static_cast<AudioGraphStyle>(settings_.graphStyle),
            .decibels = settings_.decibels,
            .octaves = settings_.octaves,
            .peaks = settings_.peaks,
            .channels = settings_.channels};
}

void GraphChoices::setLook(const GraphLook& look) {
    settings_.graphStyle = look.style;
    settings_.decibels = look.decibels;
    settings_.octaves = look.octaves;
    settings_.peaks = look.peaks;
    settings_.channels = look.channels;
    apply();
}

void GraphChoices::apply() {
    graph_.setLook(look());
    const HMENU menu = GetMenu(window_);
    CheckMenuRadioItem(menu, CMD_SPECTRUM, CMD_WAVEFORM,
                       settings_.graphStyle == FREQUENCY_STYLE ? CMD_SPECTRUM : CMD_WAVEFORM,
                       MF_BYCOMMAND);
    const auto check = [menu](UINT command, bool on) {
        CheckMenuItem(menu, command, on ? MF_CHECKED : MF_UNCHECKED);
    };
    check(CMD_DECIBELS, settings_.decibels);
    check(CMD_OCTAVES, settings_.octaves);
    check(CMD_PEAKS, settings_.peaks);
    check(CMD_CHANNELS, settings_.channels);
}

void GraphChoices::changeColor(DWORD Settings::*color) {
    if (const std::optional<COLORREF> chosen = chooseColor(window_, settings_.*color)) {
        settings_.*color = *chosen;
        applyColors();
    }
}

void GraphChoices::applyColors() {
    graph_.setColors(settings_.barColor, settings_.curveColor, settings_.backgroundColor);
}

} // namespace corvina::app
