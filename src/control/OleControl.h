#pragma once

// Everything a container asks of a control, kept in one member of the control.
//
// It has IOleObject, IOleControl, IOleInPlaceObject, IOleInPlaceActiveObject, IViewObjectEx,
// IPersistStreamInit, IPersistStorage, IPersistPropertyBag, IQuickActivate, IProvideClassInfo2,
// ISupportErrorInfo, IConnectionPointContainer and, for a control with a picture, IDataObject. Each
// group is a part of its own, which knows only what it works with. A control is made with
// control/Control.h, which says how.
//
// One thread: the one that created the control.

#include "com/ClassParts.h"
#include "com/EventSource.h"
#include "control/ConnectionsPart.h"
#include "control/ControlPart.h"
#include "control/DataPart.h"
#include "control/PersistPart.h"
#include "control/QuickActivatePart.h"

namespace corvina {

class OleControl final : private ControlWindow::Client, private ControlChanges {
public:
    OleControl(IUnknown& outer, ControlHooks& hooks, const ControlClass& controlClass);
    ~OleControl();

    // The interface of that identifier, without a new reference; null if there is none.
    [[nodiscard]] void* find(REFIID iid) noexcept;

    // The control's own window, made hidden if there is none yet. The handle stays good when the
    // control is activated in a container and deactivated again, until the hook windowReplaced.
    [[nodiscard]] HWND window() { return window_.ensure(); }
    // The window for messages that go to one window for long. The same, unless a container of
    // another DPI awareness needed one of its own.
    [[nodiscard]] HWND messageWindow() { return window_.ensureFirst(); }
    // False while the control is being designed; true if no container says.
    [[nodiscard]] bool userMode() const { return site_.userMode(); }
    // The container's background, or the system's.
    [[nodiscard]] COLORREF ambientBackground() const { return site_.background(); }
    // Width and height in device pixels: the window's, or of the extent if there is none.
    [[nodiscard]] SIZE pixelSize() const;

    // The value of a property, by its index in the class's table.
    [[nodiscard]] std::int32_t property(int index) const { return properties_.value(index); }
    // Stores a value after asking the listeners: S_OK, S_FALSE if one of them forbids it. A
    // value that the table refuses raises 380. Listeners are notified; the picture is not redrawn.
    HRESULT setProperty(int index, std::int32_t value);

    [[nodiscard]] EventSource& events() noexcept { return eventSource_; }
    void pictureChanged() noexcept override;
    // Paints the window, if there is one, without waiting until the host handles messages.
    void paintNow() noexcept;
    // Whether the control is in place in a container.
    [[nodiscard]] bool active() const noexcept { return inPlace_.active(); }

    // First step of a control's destruction: it leaves its container, no listener hears anything
    // any more and the window, which lives on until the base's own destruction, calls no hooks.
    void disconnect() noexcept;

private:
    IUnknown& windowOwner() noexcept override { return outer_; }
    bool windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void windowLost(ControlWindow::Lost which) override;
    void windowReplaced() override { hooks_.windowReplaced(); }
    void stateLoaded() override;

    IUnknown& outer_;
    ControlHooks& hooks_;
    const ControlClass& class_;
    ControlSite site_;
    ControlExtent extent_;
    PropertyValues properties_;
    ControlWindow window_;
    ClassInfoPart classInfo_;
    ErrorInfoPart errorInfo_;
    ConnectionsPart connections_;
    EventSource eventSource_;
    PersistPart persist_;
    InPlacePart inPlace_;
    ObjectPart object_;
    ControlPart control_;
    ViewPart view_;
    DataPart data_;
    QuickActivatePart quickActivate_;
};

} // namespace corvina
