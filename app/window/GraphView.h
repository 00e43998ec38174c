#pragma once

// The registered cAudioGraph control in a child window of ours, held by Windows' own container
// (atl.dll).

#include <Corvina.h>

#include <comdef.h>

namespace corvina::app {

_COM_SMARTPTR_TYPEDEF(_cAudioGraph, __uuidof(_cAudioGraph));
_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));

class GraphView {
public:
    // Throws _com_error if the control or the container is missing.
    explicit GraphView(HWND parent);
    ~GraphView();
    GraphView(const GraphView&) = delete;
    GraphView& operator=(const GraphView&) = delete;

    void moveTo(const RECT& place);
    void setStyle(AudioGraphStyle style);
    void setColors(COLORREF bars, COLORREF curve, COLORREF background);

    // Draws the samples at that address. Pending messages are dispatched meanwhile: the window may
    // be asked to close, files may end and begin.
    void show(long samples);
    void clear();
    [[nodiscard]] bool isDrawing() const noexcept { return drawing_; }

private:
    // Sets as many bars as fit into the width.
    void fitBands(int width);

    HWND window_;
    _cAudioGraphPtr graph_;
    IUnknownPtr container_; // kept alive by this reference
    bool drawing_ = false;
};

} // namespace corvina::app
