#include "graph/cAudioGraph.h"

#include "graph/PendingMessages.h"
#include "graph/SamplePicture.h"
#include "platform/MemoryProbe.h"
#include "runtime/RuntimeError.h"

#include <olectl.h>

namespace corvina {
namespace {

constexpr DISPID levelChangedEvent = 1;

// Places in the table below.
enum PropertyIndex {
    graphStyle,
    bands,
    bandsSpace,
    bandsWidth,
    backgroundColor,
    amplitudeColor,
    freqColor,
    borderStyle
};

bool isZeroOrOne(std::int32_t value) {
    return value == 0 || value == 1;
}

constexpr GraphSettings initial;

constexpr std::int32_t number(COLORREF color) {
    return static_cast<std::int32_t>(color);
}

constexpr Property properties[] = {
    {.name = L"GraphStyle",
     .id = 1,
     .initial = static_cast<std::int32_t>(initial.style),
     .accepts = &isZeroOrOne},
    {.name = L"Bands", .id = 2, .initial = initial.bands},
    {.name = L"BandsSpace", .id = 3, .initial = initial.bandsSpace},
    {.name = L"BandsWidth", .id = 4, .initial = initial.bandsWidth},
    {.name = L"BackgroundColor", .id = 5, .initial = number(initial.backgroundColor)},
    {.name = L"AmplitudeColor", .id = 6, .initial = number(initial.amplitudeColor)},
    {.name = L"FreqColor", .id = 7, .initial = number(initial.freqColor)},
    {.name = L"BorderStyle", .id = 8, .initial = initial.border, .accepts = &isZeroOrOne},
};

// A host's colour may be a number that stands for one of the system's colours.
COLORREF translated(std::int32_t color) noexcept {
    COLORREF result = 0;
    const auto value = static_cast<OLE_COLOR>(color);
    return SUCCEEDED(::OleTranslateColor(value, nullptr, &result)) ? result : value & 0xFFFFFF;
}

const void* samplesAt(LONG address) {
    const void* samples = reinterpret_cast<const void*>(address);
    // No block of 16-bit samples begins at an odd address.
    if (address % 2 != 0 || !isReadable(samples, SampleBuffer::blockBytes))
        throw RuntimeError(5, L"Invalid procedure call or argument: no samples can be read at the "
                              L"address that was passed to SetAudioData");
    return samples;
}

} // namespace

// Just wide enough for the initial number of bands.
constinit const ControlClass audioGraphClass{.clsid = CLSID_cAudioGraph,
                                             .primary = IID__cAudioGraph,
                                             .events = DIID___cAudioGraph,
                                             .progId = L"Corvina.cAudioGraph",
                                             .description = L"Corvina audio graph",
                                             .naturalPixels = {200, 100},
                                             .properties = properties};

cAudioGraph::cAudioGraph() : Control(audioGraphClass) {}

cAudioGraph::~cAudioGraph() {
    ole().disconnect();
}

template <typename Value>
HRESULT cAudioGraph::get(int property, Value* result) noexcept {
    return enterReturning(result, [&] { return ole().property(property); });
}

template <typename Value>
HRESULT cAudioGraph::put(int property, Value value) noexcept {
    return enter([&] { return ole().setProperty(property, static_cast<std::int32_t>(value)); });
}

HRESULT cAudioGraph::get_GraphStyle(AudioGraphStyle* result) {
    return get(graphStyle, result);
}
HRESULT cAudioGraph::put_GraphStyle(AudioGraphStyle value) {
    return put(graphStyle, value);
}
HRESULT cAudioGraph::get_Bands(LONG* result) {
    return get(bands, result);
}
HRESULT cAudioGraph::put_Bands(LONG value) {
    return put(bands, value);
}
HRESULT cAudioGraph::get_BandsSpace(LONG* result) {
    return get(bandsSpace, result);
}
HRESULT cAudioGraph::put_BandsSpace(LONG value) {
    return put(bandsSpace, value);
}
HRESULT cAudioGraph::get_BandsWidth(LONG* result) {
    return get(bandsWidth, result);
}
HRESULT cAudioGraph::put_BandsWidth(LONG value) {
    return put(bandsWidth, value);
}
HRESULT cAudioGraph::get_BackgroundColor(OLE_COLOR* result) {
    return get(backgroundColor, result);
}
HRESULT cAudioGraph::put_BackgroundColor(OLE_COLOR value) {
    return put(backgroundColor, value);
}
HRESULT cAudioGraph::get_AmplitudeColor(OLE_COLOR* result) {
    return get(amplitudeColor, result);
}
HRESULT cAudioGraph::put_AmplitudeColor(OLE_COLOR value) {
    return put(amplitudeColor, value);
}
HRESULT cAudioGraph::get_FreqColor(OLE_COLOR* result) {
    return get(freqColor, result);
}
HRESULT cAudioGraph::put_FreqColor(OLE_COLOR value) {
    return put(freqColor, value);
}
HRESULT cAudioGraph::get_BorderStyle(BorderStyle* result) {
    return get(borderStyle, result);
}
HRESULT cAudioGraph::put_BorderStyle(BorderStyle value) {
    return put(borderStyle, value);
}

HRESULT cAudioGraph::get_hWnd(LONG* result) {
    return enterReturning(result, [&] { return reinterpret_cast<LONG_PTR>(ole().window()); });
}

HRESULT cAudioGraph::SetAudioData(LONG pAudioData, LONG* result) {
    return enterReturning(result, [&] {
        graph_.takeSamples(samplesAt(pAudioData));
        ole().events().fire(levelChangedEvent, {graph_.level()},
                            EventSource::WhenFrozen::keepLatest);
        return 0;
    });
}

HRESULT cAudioGraph::Display() {
    return enter([&] {
        PendingMessages pending;
        graph_.display(settings(), ole().pixelSize(), [&] { pending.handle(); });
        showPicture();
    });
}

HRESULT cAudioGraph::ClearGraph(LONG* result) {
    return enterReturning(result, [&] {
        graph_.clear(settings());
        showPicture();
        return 0;
    });
}

// Deliberately empty: hosts call these two on every control, as on the player.
HRESULT cAudioGraph::Init(LONG* result) {
    return enterReturning(result, [] { return 0; });
}

HRESULT cAudioGraph::DeInit(LONG* result) {
    return enterReturning(result, [] { return 0; });
}

GraphSettings cAudioGraph::settings() const {
    return {.style = static_cast<GraphStyle>(ole().property(graphStyle)),
            .bands = ole().property(bands),
            .bandsSpace = ole().property(bandsSpace),
            .bandsWidth = ole().property(bandsWidth),
            .backgroundColor = translated(ole().property(backgroundColor)),
            .amplitudeColor = translated(ole().property(amplitudeColor)),
            .freqColor = translated(ole().property(freqColor)),
            .border = ole().property(borderStyle) != StyleNone};
}

// At once, not when the host next waits for messages: hosts draw from within long loops too.
void cAudioGraph::showPicture() noexcept {
    ole().pictureChanged();
    ole().paintNow();
}

void cAudioGraph::draw(HDC dc, const RECT& bounds) {
    const SIZE size = ole().pixelSize();
    if (ole().userMode())
        graph_.paint(dc, bounds, size);
    else
        paintSamplePicture(dc, bounds, size, settings());
}

void cAudioGraph::propertiesChanged(std::optional<int> index) {
    if (!index)
        graph_.clear(settings()); // properties were loaded: show their background
    else if (!ole().userMode())
        ole().pictureChanged(); // on a form that is being designed the effect shows at once
}

} // namespace corvina
