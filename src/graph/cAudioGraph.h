#pragma once

// The graph control as its hosts see it: properties, results and the event translated, everything
// else forwarded to AudioGraph. The control is made by the class table of the library.

#include "control/Control.h"
#include "graph/AudioGraph.h"

#include "Corvina.h"

namespace corvina {

extern const ControlClass audioGraphClass;

class cAudioGraph final : public Control<_cAudioGraph> {
public:
    cAudioGraph();
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

private:
    template <typename Value>
    HRESULT get(int property, Value* result) noexcept;
    template <typename Value>
    HRESULT put(int property, Value value) noexcept;

    [[nodiscard]] GraphSettings settings() const;
    void showPicture() noexcept;

    // ControlHooks
    void draw(HDC dc, const RECT& bounds) override;
    void propertiesChanged(std::optional<int> index) override;

    AudioGraph graph_;
};

} // namespace corvina
