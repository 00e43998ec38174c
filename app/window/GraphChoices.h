#pragma once

// What the graph of the window shows and in which colours: the commands that choose it, and the
// settings that remember it.

#include "window/GraphView.h"
#include "window/Settings.h"

namespace corvina::app {

class GraphChoices {
public:
    // All must outlive this object. window: owns the dialogs and the menu whose lines are checked.
    GraphChoices(GraphView& graph, Settings& settings, HWND window);

    // Whether it was a command of these.
    bool carryOut(int command);
    void setStyle(AudioGraphStyle style);
    // Goes on to the next of four looks: plain bars, bars of octaves in decibels with peak marks,
    // the waveform, and each channel's.
    void showNextLook();

private:
    void apply();
    void setLook(const GraphLook& look);
    [[nodiscard]] GraphLook look() const;
    void changeColor(DWORD Settings::*color);
    void applyColors();

    GraphView& graph_;
    Settings& settings_;
    HWND window_;
};

} // namespace corvina::app
