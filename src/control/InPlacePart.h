#pragma once

// In-place activation: the control's window inside the container's.
//
//   inactive -> activating -> active -> UI active    (DoVerb)
//   UI active -> active -> deactivating -> inactive  (UIDeactivate, InPlaceDeactivate)
//
// active: the window is a child of the container's. UI active: it also has the focus, and the
// container's frame knows it. Every step calls the container or sends messages to the window, and
// from within each of them the container may call anything here, destroy the window or let go of
// the control. So each step first looks whether the state is still the one that it was left in.
// While the control is being activated another activation changes nothing but whether the UI
// follows; while it is being deactivated none begins.

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

    [[nodiscard]] bool active() const noexcept {
        return state_ == State::active || state_ == State::uiActive;
    }
    // OLE_E_NOT_INPLACEACTIVE without a container, or if the container ends the activation.
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
    enum class State { inactive, activating, active, uiActive, deactivating };

    // Every change of the state has a number: what has called the container goes on only if the
    // latest change is still its own.
    unsigned changeTo(State state) noexcept;
    [[nodiscard]] bool isLatest(unsigned change) const noexcept { return change == changes_; }

    HRESULT begin(bool withUi);
    HRESULT enterContainer(IOleInPlaceSite& site, unsigned change);
    void leave() noexcept;
    HRESULT beginUi();
    void takeFocus() noexcept;
    void place(RECT position, const RECT* clip) noexcept;
    void showVisiblePart() noexcept;
    [[nodiscard]] RECT sized(RECT position) const noexcept;

    const ControlClass& class_;
    const ControlSite& clientSite_;
    const ControlExtent& extent_;
    ControlWindow& window_;

    State state_ = State::inactive;
    unsigned changes_ = 0;
    bool announced_ = false; // the container was notified of the activation, and expects its end
    bool uiWanted_ = false;  // while activating: the UI is to follow
    // The container is being asked for a rectangle of the fixed size. What it sets meanwhile is its
    // decision, after which it is not asked again.
    bool askingForSize_ = false;
    ComPtr<IOleInPlaceSite> site_;
    ComPtr<IOleInPlaceFrame> frame_;
    ComPtr<IOleInPlaceUIWindow> document_;
    RECT position_{};
    RECT visible_{}; // of the window, in its own coordinates
};

} // namespace corvina
