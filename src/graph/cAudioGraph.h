#pragma once

// The graph control as its hosts see it: properties, results and the event translated, everything
// else forwarded to AudioGraph. The control is made by the class table of the library.

#include "control/Control.h"
#include "graph/AudioGraph.h"
#include "stream/SampleFeed.h"

#include "Corvina.h"

namespace corvina {

extern const ControlClass audioGraphClass;

class cAudioGraph final : public Control<_cAudioGraph> {
public:
    explicit cAudioGraph(IUnknown* outer = nullptr);
    ~cAudioGraph() override;

    HRESULT STDMETHODCALLTYPE get_GraphStyle(AudioGraphStyle* result) override;
    HRESULT STDMETHODCALLTYPE put_GraphStyle(AudioGraphStyle value) override;
    HRESULT STDMETHODCALLTYPE get_Bands(LONG* result) override;
    HRESULT STDMETHODCALLTYPE put_Bands(LONG value) override;
    HRESULT STDMETHODCALLTYPE get_BandsSpace(LONG* result) override;
    HRESULT STDMETHODCALLTYPE put_BandsSpace(LONG value) override;
    HRESULT STDMETHODCALLTYPE get_BandsWidth(LONG* result) override;
    HRESULT STDMETHODCALLTYPE put_BandsWidth(LONG value) override;
    HRESULT STDMETHODCALLTYPE get_BackgroundColor(OLE_COLOR* result) override;
    HRESULT STDMETHODCALLTYPE put_BackgroundColor(OLE_COLOR value) override;
    HRESULT STDMETHODCALLTYPE get_AmplitudeColor(OLE_COLOR* result) override;
    HRESULT STDMETHODCALLTYPE put_AmplitudeColor(OLE_COLOR value) override;
    HRESULT STDMETHODCALLTYPE get_FreqColor(OLE_COLOR* result) override;
    HRESULT STDMETHODCALLTYPE put_FreqColor(OLE_COLOR value) override;
    HRESULT STDMETHODCALLTYPE get_BorderStyle(BorderStyle* result) override;
    HRESULT STDMETHODCALLTYPE put_BorderStyle(BorderStyle value) override;
    HRESULT STDMETHODCALLTYPE get_hWnd(LONG* result) override;
    HRESULT STDMETHODCALLTYPE SetAudioData(LONG pAudioData, LONG* result) override;
    HRESULT STDMETHODCALLTYPE Display() override;
    HRESULT STDMETHODCALLTYPE ClearGraph(LONG* result) override;
    HRESULT STDMETHODCALLTYPE Init(LONG* result) override;
    HRESULT STDMETHODCALLTYPE DeInit(LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_Player(IDispatch** result) override;
    HRESULT STDMETHODCALLTYPE put_Player(IDispatch* value) override;
    HRESULT STDMETHODCALLTYPE putref_Player(IDispatch* value) override;
    HRESULT STDMETHODCALLTYPE get_FramesPerSecond(LONG* result) override;
    HRESULT STDMETHODCALLTYPE put_FramesPerSecond(LONG value) override;
    HRESULT STDMETHODCALLTYPE get_LevelScale(AudioGraphLevelScale* result) override;
    HRESULT STDMETHODCALLTYPE put_LevelScale(AudioGraphLevelScale value) override;
    HRESULT STDMETHODCALLTYPE get_FrequencyAxis(AudioGraphFrequencyAxis* result) override;
    HRESULT STDMETHODCALLTYPE put_FrequencyAxis(AudioGraphFrequencyAxis value) override;
    HRESULT STDMETHODCALLTYPE get_PeakHold(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_PeakHold(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_ChannelWaveforms(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_ChannelWaveforms(VARIANT_BOOL value) override;

private:
    template <typename Value>
    HRESULT get(int property, Value* result) noexcept;
    template <typename Value>
    HRESULT put(int property, Value value) noexcept;

    // words: of the error that any other value raises.
    template <typename Value>
    HRESULT putZeroOrOne(int property, Value value, const wchar_t* words) noexcept;

    HRESULT getBoolean(int property, VARIANT_BOOL* result) noexcept;
    HRESULT putBoolean(int property, VARIANT_BOOL value) noexcept;

    [[nodiscard]] GraphSettings settings() const;
    void showPicture() noexcept;
    void fireLevelChanged() noexcept;
    // Starts, changes or stops the timer that draws, by the player and the frames per second.
    void updateTimer();
    // One tick of that timer.
    void followPlayer();

    // ControlHooks
    void draw(HDC dc, const RECT& bounds) override;
    bool windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void windowResized(SIZE size) override;
    void windowLost() override;
    void windowReplaced() override;
    void propertiesChanged(std::optional<int> index) override;

    AudioGraph graph_;
    std::shared_ptr<SampleFeed> feed_; // of the player that is followed
    HWND timerWindow_ = nullptr;       // has the timer
    bool following_ = false;           // the picture shows what the player plays
};

} // namespace corvina
