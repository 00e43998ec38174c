#pragma once

// The child controls of the player window and their places. What they do is decided in
// PlayerWindow.h.

#include "window/ChildControls.h"
#include "window/EqualizerPanel.h"
#include "window/Headline.h"
#include "window/SeekBar.h"
#include "window/TrackListBox.h"
#include "window/Transport.h"

#include <string>

namespace corvina::app {

class PlayerControls {
public:
    explicit PlayerControls(HWND parent);
    PlayerControls(const PlayerControls&) = delete;
    PlayerControls& operator=(const PlayerControls&) = delete;

    // Lays all out in the parent's client area; returns the place left for the graph.
    RECT layOut();
    // The least client area in which everything can be used.
    [[nodiscard]] SIZE leastSize() const;
    [[nodiscard]] int scaled(int length) const noexcept { return controls_.scaled(length); }

    [[nodiscard]] Headline& headline() noexcept { return headline_; }
    [[nodiscard]] SeekBar& seekBar() noexcept { return seekBar_; }
    [[nodiscard]] Transport& transport() noexcept { return transport_; }
    [[nodiscard]] EqualizerPanel& equalizer() noexcept { return equalizer_; }
    [[nodiscard]] TrackListBox& list() noexcept { return list_; }

    // In the line at the bottom.
    void setMessage(const std::wstring& text) { setText(message_, text); }

private:
    ChildControls controls_;
    Headline headline_;
    SeekBar seekBar_;
    Transport transport_;
    EqualizerPanel equalizer_;
    TrackListBox list_;
    HWND message_;
};

} // namespace corvina::app
