#include "window/GraphView.h"

#include <algorithm>

namespace corvina::app {

namespace {

constexpr int gapPixels = 1;
constexpr int mostBands = 50; // the upper half of the spectrum shows little

void check(HRESULT code) {
    if (FAILED(code))
        _com_issue_error(code);
}

// atl.dll has no import library with every compiler.
template <typename Function>
Function atlFunction(const char* name) {
    static const HMODULE library = LoadLibraryW(L"atl.dll");
    const FARPROC entry = library ? GetProcAddress(library, name) : nullptr;
    if (!entry)
        _com_issue_error(HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    return reinterpret_cast<Function>(reinterpret_cast<void*>(entry));
}

using AxWinInit = BOOL(STDAPICALLTYPE*)();
using AxAttachControl = HRESULT(STDAPICALLTYPE*)(IUnknown*, HWND, IUnknown**);

} // namespace

GraphView::GraphView(HWND parent) {
    // Once in a program: a second call may fail.
    static const BOOL ready = atlFunction<AxWinInit>("AtlAxWinInit")();
    if (!ready)
        _com_issue_error(E_FAIL);
    // The container activates the control at once, in the place that there is.
    constexpr int anySize = 100;
    window_ =
        CreateWindowExW(0, L"AtlAxWin", nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0,
                        anySize, anySize, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    check(graph_.CreateInstance(__uuidof(cAudioGraph), nullptr, CLSCTX_INPROC_SERVER));
    check(atlFunction<AxAttachControl>("AtlAxAttachControl")(graph_, window_, &container_));
    long ignored = 0;
    check(graph_->Init(&ignored));
}

// The window goes first: its procedure uses the container.
GraphView::~GraphView() {
    graph_->put_Player(nullptr);
    DestroyWindow(window_);
}

void GraphView::moveTo(const RECT& place) {
    MoveWindow(window_, place.left, place.top, place.right - place.left, place.bottom - place.top,
               TRUE);
    fitBands(place.right - place.left);
    clear();
}

void GraphView::setLook(const GraphLook& look) {
    graph_->put_GraphStyle(look.style);
    graph_->put_LevelScale(look.decibels ? DECIBEL_SCALE : LINEAR_SCALE);
    graph_->put_FrequencyAxis(look.octaves ? OCTAVE_AXIS : BAND_AXIS);
    graph_->put_PeakHold(look.peaks ? VARIANT_TRUE : VARIANT_FALSE);
    graph_->put_ChannelWaveforms(look.channels ? VARIANT_TRUE : VARIANT_FALSE);
    clear();
}

void GraphView::setColors(COLORREF bars, COLORREF curve, COLORREF background) {
    graph_->put_FreqColor(bars);
    graph_->put_AmplitudeColor(curve);
    graph_->put_BackgroundColor(background);
    clear();
}

void GraphView::follow(IDispatch* player) {
    check(graph_->put_Player(player));
}

void GraphView::clear() {
    long ignored = 0;
    graph_->ClearGraph(&ignored);
}

void GraphView::fitBands(int width) {
    const int bar = std::max(1, width / mostBands - gapPixels);
    graph_->put_BandsSpace(gapPixels);
    graph_->put_BandsWidth(bar);
    graph_->put_Bands(std::max(1, width / (bar + gapPixels)));
}

} // namespace corvina::app
