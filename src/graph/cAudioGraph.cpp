#include "graph/cAudioGraph.h"

#include "graph/GraphProperties.h"
#include "graph/PendingMessages.h"
#include "graph/SamplePicture.h"
#include "platform/GuardedCopy.h"
#include "runtime/RuntimeError.h"

#include <array>
#include <cstdint>
#include <new>
#include <olectl.h>
#include <utility>

namespace corvina {
namespace {

constexpr DISPID levelChangedEvent = 1;

constexpr UINT_PTR pictureTimer = 1;

// A host's colour may be a number that stands for one of the system's colours.
COLORREF translated(std::int32_t color) noexcept {
    COLORREF result = 0;
    const auto value = static_cast<OLE_COLOR>(color);
    return SUCCEEDED(::OleTranslateColor(value, nullptr, &result)) ? result : value & 0xFFFFFF;
}

using HostSamples = std::array<std::uint8_t, SampleBuffer::blockBytes>;

// A copy, because another thread of the host may free the memory meanwhile.
HostSamples samplesAt(LONG address) {
    HostSamples samples;
    // No block of 16-bit samples begins at an odd address.
    if (address % 2 != 0 ||
        !copyIfReadable(samples.data(), reinterpret_cast<const void*>(address), samples.size()))
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
                                             .properties = graphProperties};

cAudioGraph::cAudioGraph(IUnknown* outer) : Control(audioGraphClass, outer) {}

cAudioGraph::~cAudioGraph() {
    feed_.reset();
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

template <typename Value>
HRESULT cAudioGraph::putZeroOrOne(int property, Value value, const wchar_t* words) noexcept {
    if (isZeroOrOne(value))
        return put(property, value);
    return enter([words] { throw RuntimeError(380, words); });
}

HRESULT cAudioGraph::getBoolean(int property, VARIANT_BOOL* result) noexcept {
    return enterReturning(
        result, [&] { return ole().property(property) != 0 ? VARIANT_TRUE : VARIANT_FALSE; });
}

HRESULT cAudioGraph::putBoolean(int property, VARIANT_BOOL value) noexcept {
    return put(property, value != VARIANT_FALSE ? VARIANT_TRUE : VARIANT_FALSE);
}

HRESULT cAudioGraph::get_GraphStyle(AudioGraphStyle* result) {
    return get(graphStyle, result);
}
HRESULT cAudioGraph::put_GraphStyle(AudioGraphStyle value) {
    return putZeroOrOne(graphStyle, value,
                        L"GraphStyle must be 0 (AMPLITUDE_STYLE) or 1 (FREQUENCY_STYLE)");
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
    return putZeroOrOne(borderStyle, value, L"BorderStyle must be 0 (StyleNone) or 1 (StyleFixed)");
}

HRESULT cAudioGraph::get_hWnd(LONG* result) {
    return enterReturning(result, [&] { return reinterpret_cast<LONG_PTR>(ole().window()); });
}

HRESULT cAudioGraph::SetAudioData(LONG pAudioData, LONG* result) {
    return enterReturning(result, [&] {
        graph_.takeSamples(samplesAt(pAudioData).data());
        fireLevelChanged();
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

HRESULT cAudioGraph::get_Player(IDispatch** result) {
    return enterFilling(result, [&] {
        if (feed_)
            *result = feed_->player().query<IDispatch>().detach();
    });
}

HRESULT cAudioGraph::put_Player(IDispatch* value) {
    return enter([&] {
        const auto player = ComPtr<IDispatch>(value).query<IFollowedPlayer>();
        if (value && !player)
            throw RuntimeError(380, L"Player must be a cPlayer control or Nothing");
        feed_ = player ? player->sampleFeed() : nullptr;
        updateTimer();
    });
}

HRESULT cAudioGraph::putref_Player(IDispatch* value) {
    return put_Player(value);
}

HRESULT cAudioGraph::get_FramesPerSecond(LONG* result) {
    return get(framesPerSecond, result);
}
HRESULT cAudioGraph::put_FramesPerSecond(LONG value) {
    if (isFrameRate(value))
        return put(framesPerSecond, value);
    return enter([] { throw RuntimeError(380, L"FramesPerSecond must be 1 to 100"); });
}
HRESULT cAudioGraph::get_LevelScale(AudioGraphLevelScale* result) {
    return get(levelScale, result);
}
HRESULT cAudioGraph::put_LevelScale(AudioGraphLevelScale value) {
    return putZeroOrOne(levelScale, value,
                        L"LevelScale must be 0 (LINEAR_SCALE) or 1 (DECIBEL_SCALE)");
}
HRESULT cAudioGraph::get_FrequencyAxis(AudioGraphFrequencyAxis* result) {
    return get(frequencyAxis, result);
}
HRESULT cAudioGraph::put_FrequencyAxis(AudioGraphFrequencyAxis value) {
    return putZeroOrOne(frequencyAxis, value,
                        L"FrequencyAxis must be 0 (BAND_AXIS) or 1 (OCTAVE_AXIS)");
}
HRESULT cAudioGraph::get_PeakHold(VARIANT_BOOL* result) {
    return getBoolean(peakHold, result);
}
HRESULT cAudioGraph::put_PeakHold(VARIANT_BOOL value) {
    return putBoolean(peakHold, value);
}
HRESULT cAudioGraph::get_ChannelWaveforms(VARIANT_BOOL* result) {
    return getBoolean(channelWaveforms, result);
}
HRESULT cAudioGraph::put_ChannelWaveforms(VARIANT_BOOL value) {
    return putBoolean(channelWaveforms, value);
}

// The timer belongs to the control's window and is made again with it.
void cAudioGraph::updateTimer() {
    if (feed_ && ole().userMode()) {
        const UINT interval = 1000U / static_cast<UINT>(ole().property(framesPerSecond));
        timerWindow_ = ole().window();
        ::SetTimer(timerWindow_, pictureTimer, interval, nullptr);
    } else if (const HWND window = std::exchange(timerWindow_, nullptr)) {
        ::KillTimer(window, pictureTimer);
    }
}

void cAudioGraph::followPlayer() {
    SampleBlock block;
    if (feed_ && feed_->latestSamples(block)) {
        following_ = true;
        graph_.takeBlock(std::move(block));
        fireLevelChanged();
        // No message is dispatched while this is drawn: the host waits for no call of its own.
        graph_.display(settings(), ole().pixelSize(), [] {});
        showPicture();
        return;
    }
    if (std::exchange(following_, false)) {
        graph_.clear(settings());
        showPicture();
    }
    if (!feed_ || !feed_->connected()) {
        feed_.reset();
        updateTimer();
    }
}

void cAudioGraph::fireLevelChanged() noexcept {
    try {
        ole().events().fire(levelChangedEvent, {graph_.level()},
                            EventSource::WhenFrozen::keepLatest);
    } catch (const std::bad_alloc&) {
        // No memory for its argument: the next level follows soon.
    }
}

bool cAudioGraph::windowMessage(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
    if (message != WM_TIMER || wParam != pictureTimer)
        return false;
    followPlayer();
    return true;
}

void cAudioGraph::windowLost() {
    timerWindow_ = nullptr;
}

void cAudioGraph::windowReplaced() {
    if (const HWND former = std::exchange(timerWindow_, nullptr)) {
        ::KillTimer(former, pictureTimer);
        updateTimer();
    }
}

void cAudioGraph::windowResized(SIZE) {
    if (feed_ && !timerWindow_)
        updateTimer();
}

GraphSettings cAudioGraph::settings() const {
    return {.style = static_cast<GraphStyle>(ole().property(graphStyle)),
            .bands = ole().property(bands),
            .bandsSpace = ole().property(bandsSpace),
            .bandsWidth = ole().property(bandsWidth),
            .backgroundColor = translated(ole().property(backgroundColor)),
            .amplitudeColor = translated(ole().property(amplitudeColor)),
            .freqColor = translated(ole().property(freqColor)),
            .border = ole().property(borderStyle) != StyleNone,
            .framesPerSecond = ole().property(framesPerSecond),
            .levelScale = static_cast<LevelScale>(ole().property(levelScale)),
            .frequencyAxis = static_cast<FrequencyAxis>(ole().property(frequencyAxis)),
            .peakHold = ole().property(peakHold) != 0,
            .channelWaveforms = ole().property(channelWaveforms) != 0};
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
    if (timerWindow_ && (!index || *index == framesPerSecond))
        updateTimer();
    if (!index)
        graph_.clear(settings()); // properties were loaded: show their background
    else if (!ole().userMode())
        ole().pictureChanged(); // on a form that is being designed the effect shows at once
}

} // namespace corvina
