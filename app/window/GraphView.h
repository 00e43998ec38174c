#pragma once

// The registered cAudioGraph control in a child window of ours, held by Windows' own container
// (atl.dll).

#include <Corvina.h>

#include <comdef.h>

namespace corvina::app {

_COM_SMARTPTR_TYPEDEF(_cAudioGraph, __uuidof(_cAudioGraph));
_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));

// What the graph shows, and how.
struct GraphLook {
    AudioGraphStyle style = FREQUENCY_STYLE;
    bool decibels = false;
    bool octaves = false;
    bool peaks = false;
    bool channels = false; // each one's waveform by itself
    friend bool operator==(const GraphLook&, const GraphLook&) = default;
};

class GraphView {
public:
    // Throws _com_error if the control or the container is missing.
    explicit GraphView(HWND parent);
    ~GraphView();
    GraphView(const GraphView&) = delete;
    GraphView& operator=(const GraphView&) = delete;

    void moveTo(const RECT& place);
    void setLook(const GraphLook& look);
    void setColors(COLORREF bars, COLORREF curve, COLORREF background);
    // The graph draws what this player plays, by itself.
    void follow(IDispatch* player);
    void clear();
    // Whether a window is the graph or lies in it.
    [[nodiscard]] bool contains(HWND window) const noexcept {
        return window == window_ || IsChild(window_, window);
    }

private:
    // Sets as many bars as fit into the width.
    void fitBands(int width);

    HWND window_;
    _cAudioGraphPtr graph_;
    IUnknownPtr container_; // kept alive by this reference
};

} // namespace corvina::app
