#pragma once

// Everything a container asks of a control, kept in one member of the control.
//
// It answers for IOleObject, IOleControl, IOleInPlaceObject, IOleInPlaceActiveObject,
// IViewObjectEx, IPersistStreamInit, IPersistStorage, IPersistPropertyBag, IQuickActivate,
// IProvideClassInfo2, ISupportErrorInfo, IConnectionPointContainer and, for a control with a
// picture, IDataObject; each group is a part of its own. A control is made with com/Control.h,
// which says how.
//
// One thread: the one that created the control.

#include "com/ClassParts.h"
#include "com/ConnectionsPart.h"
#include "com/ControlClass.h"
#include "com/ControlExtent.h"
#include "com/ControlHooks.h"
#include "com/ControlSite.h"
#include "com/ControlWindow.h"
#include "com/DataPart.h"
#include "com/EventSource.h"
#include "com/InPlacePart.h"
#include "com/ObjectPart.h"
#include "com/PersistPart.h"
#include "com/PropertyValues.h"
#include "com/QuickActivatePart.h"
#include "com/ViewPart.h"

namespace corvina {

class OleControl final : private ControlWindow::Client {
public:
    OleControl(IUnknown& whole, ControlHooks& hooks, const ControlClass& controlClass);
    ~OleControl();

    // The interface of that identifier, without a new reference; null where there is none.
    [[nodiscard]] void* find(REFIID iid) noexcept;

    // The control's own window, made hidden if there is none yet. The handle stays good when the
    // control is activated in a container and deactivated again.
    [[nodiscard]] HWND window() { return window_.ensure(); }
    // False while the control is being designed; true where no container says.
    [[nodiscard]] bool userMode() const { return site_.userMode(); }
    // The container's background, or the system's.
    [[nodiscard]] COLORREF ambientBackground() const { return site_.background(); }
    // Width and height in device pixels: the window's, or of the extent where there is none.
    [[nodiscard]] SIZE pixelSize() const;

    // The value of a property, by its index in the class's table.
    [[nodiscard]] std::int32_t property(int index) const { return properties_.value(index); }
    // Stores a value after asking the listeners: S_OK, S_FALSE where one of them forbids it. A
    // value that the table refuses raises 380. Listeners are told; the picture is not redrawn.
    HRESULT setProperty(int index, std::int32_t value);

    [[nodiscard]] EventSource& events() noexcept { return eventSource_; }
    // The picture is another one: the window is painted anew and containers that show a still
    // picture are told.
    void pictureChanged() noexcept;

    // First step of a control's destruction: it leaves its container, no listener hears anything
    // any more and the window, which lives on until the base's own destruction, calls no hooks.
    void disconnect() noexcept;

    // ---- for the parts
    [[nodiscard]] const ControlClass& controlClass() const noexcept { return class_; }
    [[nodiscard]] ControlHooks& hooks() noexcept { return hooks_; }
    [[nodiscard]] ControlSite& site() noexcept { return site_; }
    [[nodiscard]] const ControlSite& site() const noexcept { return site_; }
    [[nodiscard]] ControlWindow& ownWindow() noexcept { return window_; }
    [[nodiscard]] ControlExtent& extent() noexcept { return extent_; }
    [[nodiscard]] PropertyValues& properties() noexcept { return properties_; }
    [[nodiscard]] InPlacePart& inPlace() noexcept { return inPlace_; }
    [[nodiscard]] ObjectPart& object() noexcept { return object_; }
    [[nodiscard]] ViewPart& view() noexcept { return view_; }
    [[nodiscard]] ConnectionsPart& connections() noexcept { return connections_; }
    // Properties and extent were loaded or reset.
    void stateLoaded();

private:
    IUnknown& windowOwner() noexcept override { return whole_; }
    bool windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void windowLost() override;
    void paint(HWND window);

    IUnknown& whole_;
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
    ViewPart view_;
    DataPart data_;
    QuickActivatePart quickActivate_;
};

} // namespace corvina
