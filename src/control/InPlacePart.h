#pragma once

// In-place activation: the control's window inside the container's.
//
// inactive -> active (the window is a child of the container's) -> UI active (it has the focus and
// the container's frame knows it), and back.

#include "com/Part.h"
#include "control/ControlExtent.h"
#include "control/ControlSite.h"
#include "control/ControlWindow.h"

#include <oleidl.h>

namespace corvina {

template <>
struct InterfaceIds<IOleInPlaceObject> {
    static bool contain(REFIID iid) noexcept {
        return iid == IID_IOleInPlaceObject || iid == IID_IOleWindow;
    }
};

class InPlacePart final : public Part<IOleInPlaceObject, IOleInPlaceActiveObject> {
public:
    InPlacePart(IUnknown& outer, const ControlClass& controlClass, const ControlSite& site,
                const ControlExtent& extent, ControlWindow& window) noexcept
        : Part(outer), class_(controlClass), clientSite_(site), extent_(extent), window_(window) {}

    [[nodiscard]] bool active() const noexcept { return active_; }
    HRESULT activate(bool withUi);
    // Hides the window and leaves the control active.
    void hide() noexcept;
    // The extent has changed: asks the container for a rectangle of the new size.
    void extentChanged() noexcept;
    // The container has gone from design to run time or back.
    void userModeChanged() noexcept { showVisiblePart(); }
    // The window was destroyed under the control; the container is not called any more.
    void windowLost() noexcept;

    // IOleWindow, for both
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* result) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;

    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override;

    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activated) override;
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activated) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window,
                                           BOOL isFrame) override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;

private:
    HRESULT begin();
    HRESULT enterContainer(IOleInPlaceSite& site);
    HRESULT beginUi();
    void place(RECT position, const RECT* clip) noexcept;
    void showVisiblePart() noexcept;
    [[nodiscard]] RECT sized(RECT position) const noexcept;

    const ControlClass& class_;
    const ControlSite& clientSite_;
    const ControlExtent& extent_;
    ControlWindow& window_;
    ComPtr<IOleInPlaceSite> site_;
    ComPtr<IOleInPlaceFrame> frame_;
    ComPtr<IOleInPlaceUIWindow> document_;
    RECT position_{};
    RECT visible_{}; // of the window, in its own coordinates
    bool active_ = false;
    bool uiActive_ = false;
};

} // namespace corvina
