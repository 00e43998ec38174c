#include "window/EqualizerPanel.h"

#include "window/Commands.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr float mostDecibels = 12;
constexpr float stepsOfDecibel = 2;
constexpr std::array<const wchar_t*, 10> frequencies{L"31", L"62", L"125", L"250", L"500",
                                                     L"1k", L"2k", L"4k",  L"8k",  L"16k"};
constexpr std::array<EqualizerPreset, 7> presets{{
    {L"Flat", {}},
    {L"Bass", {6, 5, 4, 2, 0, 0, 0, 0, 0, 0}},
    {L"Treble", {0, 0, 0, 0, 0, 0, 2, 4, 5, 6}},
    {L"Loudness", {6, 4, 2, 0, -1, -1, 0, 2, 4, 5}},
    {L"Rock", {4, 3, 2, 0, -1, -1, 1, 2, 3, 4}},
    {L"Speech", {-8, -5, -2, 0, 2, 3, 3, 2, -1, -4}},
    {L"Night", {-6, -4, -2, 0, 1, 1, 0, -2, -4, -6}},
}};

// A slider's upper end has the lowest number.
LPARAM positionOf(float decibels) {
    return std::lround(-stepsOfDecibel * std::clamp(decibels, -mostDecibels, mostDecibels));
}

float decibelsAt(HWND slider) {
    return static_cast<float>(-SendMessageW(slider, TBM_GETPOS, 0, 0)) / stepsOfDecibel;
}

// Not every system has it in the middle of the slider.
int middleOfThumb(HWND slider) {
    RECT thumb{};
    SendMessageW(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    return (thumb.left + thumb.right) / 2;
}

std::wstring decibelText(float decibels) {
    const auto halves = std::lround(decibels * stepsOfDecibel);
    if (halves == 0)
        return L"0";
    std::wstring text(halves > 0 ? L"+" : L"\x2212");
    text += std::to_wstring(std::abs(halves) / 2);
    return halves % 2 == 0 ? text : text + L".5";
}

} // namespace

const std::array<EqualizerPreset, 7>& equalizerPresets() noexcept {
    return presets;
}

EqualizerPanel::EqualizerPanel(const ChildControls& controls)
    : controls_(controls), presetLabel_(controls.addLabel(L"Preset")),
      preset_(
          controls.add(L"COMBOBOX", L"", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, CTL_PRESET)),
      reset_(controls.add(L"BUTTON", L"Reset", WS_TABSTOP, CMD_EQUALIZER_RESET)) {
    setAccessibleName(preset_, L"Equalizer preset");
    for (const EqualizerPreset& preset : presets)
        SendMessageW(preset_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(preset.name));
    SendMessageW(preset_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"Own"));
    constexpr int most = static_cast<int>(mostDecibels * stepsOfDecibel);
    for (std::size_t band = 0; band < bands_.size(); ++band) {
        const std::wstring name =
            L"Equalizer " + std::wstring(frequencies[band]) + L" Hz, decibels";
        bands_[band] = {.decibels = controls.addLabel(L"0", SS_CENTER),
                        .slider =
                            controls.addSlider(name.c_str(), TBS_VERT,
                                               CTL_BANDS + static_cast<int>(band), -most, most),
                        .frequency = controls.addLabel(frequencies[band], SS_CENTER)};
        SendMessageW(bands_[band].slider, TBM_SETPAGESIZE, 0,
                     2 * static_cast<LPARAM>(stepsOfDecibel));
    }
    setGains({});
}

void EqualizerPanel::show(bool shown) {
    shown_ = shown;
    const auto set = [shown](HWND window) { ShowWindow(window, shown ? SW_SHOWNA : SW_HIDE); };
    for (const HWND window : {presetLabel_, preset_, reset_})
        set(window);
    for (const Band& band : bands_)
        for (const HWND window : {band.decibels, band.slider, band.frequency})
            set(window);
}

void EqualizerPanel::setGains(const BandGains& gains) {
    for (std::size_t band = 0; band < bands_.size(); ++band)
        SendMessageW(bands_[band].slider, TBM_SETPOS, TRUE, positionOf(gains[band]));
    slidersMoved();
}

BandGains EqualizerPanel::gains() const {
    BandGains result{};
    std::ranges::transform(bands_, result.begin(),
                           [](const Band& band) { return decibelsAt(band.slider); });
    return result;
}

void EqualizerPanel::slidersMoved() {
    const BandGains now = gains();
    for (std::size_t band = 0; band < bands_.size(); ++band)
        setText(bands_[band].decibels, decibelText(now[band]));
    const auto found = std::ranges::find(presets, now, &EqualizerPreset::gains);
    SendMessageW(preset_, CB_SETCURSEL, static_cast<WPARAM>(found - presets.begin()), 0);
}

bool EqualizerPanel::isSlider(HWND window) const {
    return std::ranges::find(bands_, window, &Band::slider) != bands_.end();
}

std::optional<BandGains> EqualizerPanel::selectedPreset() const {
    const auto selected = static_cast<std::size_t>(SendMessageW(preset_, CB_GETCURSEL, 0, 0));
    return selected < presets.size() ? std::optional(presets[selected].gains) : std::nullopt;
}

int EqualizerPanel::layOut(int left, int top, int width) {
    if (!shown_)
        return 0;
    const auto scaled = [this](int length) { return controls_.scaled(length); };
    const int textHeight = scaled(16);
    const int sliderHeight = scaled(90);
    const std::array row{
        RowItem{presetLabel_, scaled(48), scaled(48), textHeight},
        RowItem{preset_, scaled(90), scaled(150), scaled(24), scaled(240)},
        RowItem{reset_, scaled(58), scaled(72), scaled(26)},
    };
    const int rowWidth = std::min(width, scaled(48 + 150 + 72 + 12));
    int y = top + layOutRows(row, left, top, rowWidth, scaled(6)) + scaled(6);
    for (int band = 0; band < static_cast<int>(bands_.size()); ++band) {
        const int x = left + width * band / 10;
        const int columnWidth = left + width * (band + 1) / 10 - x;
        const int sliderWidth = std::min(columnWidth, scaled(32));
        const Band& here = bands_[static_cast<std::size_t>(band)];
        place(here.decibels, x, y, columnWidth, textHeight);
        const int sliderLeft = x + (columnWidth - sliderWidth) / 2;
        place(here.slider, sliderLeft, y + textHeight, sliderWidth, sliderHeight);
        place(here.slider, sliderLeft + sliderWidth / 2 - middleOfThumb(here.slider),
              y + textHeight, sliderWidth, sliderHeight);
        place(here.frequency, x, y + textHeight + sliderHeight, columnWidth, textHeight);
    }
    return y + 2 * textHeight + sliderHeight - top;
}

} // namespace corvina::app
