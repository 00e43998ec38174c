#include "control/InPlacePart.h"

#include "platform/GdiHandles.h"

#include <algorithm>
#include <utility>

namespace corvina {
namespace {

// No window is beyond this, and within it widths, heights and sums with a size do not overflow.
constexpr LONG furthest = 1 << 28;

LONG bounded(LONG place) noexcept {
    return std::clamp(place, -furthest, furthest);
}

} // namespace

unsigned InPlacePart::changeTo(State state) noexcept {
    state_ = state;
    return ++changes_;
}

HRESULT InPlacePart::activate(bool withUi) {
    return enter([&]() -> HRESULT {
        if (state_ == State::activating) {
            uiWanted_ = uiWanted_ || withUi;
            return S_OK; // the call that is under way does it
        }
        if (state_ == State::deactivating)
            return OLE_E_NOT_INPLACEACTIVE;
        bool uiFollows = withUi;
        if (state_ == State::inactive) {
            if (const HRESULT begun = begin(withUi); FAILED(begun))
                return begun;
            uiFollows = std::exchange(uiWanted_, false);
        }
        // From here on the container may have taken the control away again.
        if (active())
            ::ShowWindow(window_.handle(), SW_SHOWNA);
        if (!uiFollows || !class_.visibleAtRunTime)
            return S_OK;
        if (state_ == State::active)
            return beginUi();
        if (state_ == State::uiActive)
            takeFocus();
        return S_OK;
    });
}

HRESULT InPlacePart::begin(bool withUi) {
    const ComPtr<IOleClientSite> client = clientSite_.get();
    const auto site = client.query<IOleInPlaceSite>();
    // Another activation may have begun during the query.
    if (!site || state_ != State::inactive)
        return OLE_E_NOT_INPLACEACTIVE;
    const unsigned change = changeTo(State::activating);
    uiWanted_ = withUi;
    announced_ = false;
    site_ = site;
    HRESULT entered;
    try {
        entered = enterContainer(*site.get(), change);
    } catch (...) {
        entered = currentExceptionToHresult(IID_IOleInPlaceObject, L"");
    }
    if (FAILED(entered)) {
        if (isLatest(change))
            leave();
        return entered;
    }
    client->ShowObject();
    if (active() && extent_.fixed())
        extentChanged();
    return S_OK;
}

HRESULT InPlacePart::enterContainer(IOleInPlaceSite& site, unsigned change) {
    if (site.CanInPlaceActivate() != S_OK)
        return E_FAIL;
    if (!isLatest(change))
        return OLE_E_NOT_INPLACEACTIVE;
    announced_ = true;
    if (const HRESULT notified = site.OnInPlaceActivate(); FAILED(notified)) {
        announced_ = false;
        return notified;
    }
    HWND container = nullptr;
    if (!isLatest(change))
        return OLE_E_NOT_INPLACEACTIVE;
    if (FAILED(site.GetWindow(&container)) || !::IsWindow(container))
        return E_FAIL;
    ComPtr<IOleInPlaceFrame> frame;
    ComPtr<IOleInPlaceUIWindow> document;
    RECT position{}, clip{};
    OLEINPLACEFRAMEINFO frameInfo{};
    frameInfo.cb = sizeof frameInfo;
    if (!isLatest(change))
        return OLE_E_NOT_INPLACEACTIVE;
    if (const HRESULT notified =
            site.GetWindowContext(frame.put(), document.put(), &position, &clip, &frameInfo);
        FAILED(notified))
        return notified;
    const RECT wanted = sized(position);
    if (!isLatest(change) || !::IsWindow(container) || !window_.moveInto(container, wanted) ||
        !isLatest(change))
        return OLE_E_NOT_INPLACEACTIVE;
    frame_ = std::move(frame);
    document_ = std::move(document);
    changeTo(State::active);
    place(position, &clip);
    return S_OK;
}

HRESULT InPlacePart::beginUi() {
    const ComPtr<IOleInPlaceSite> site = site_;
    const ComPtr<IOleInPlaceUIWindow> around[] = {ComPtr<IOleInPlaceUIWindow>(frame_.get()),
                                                  document_};
    const unsigned change = changeTo(State::uiActive);
    if (const HRESULT notified = site->OnUIActivate(); FAILED(notified)) {
        if (isLatest(change))
            changeTo(State::active);
        return notified;
    }
    if (isLatest(change))
        takeFocus();
    for (const ComPtr<IOleInPlaceUIWindow>& window : around)
        if (window && isLatest(change))
            window->SetActiveObject(this, class_.description);
    // No tools of our own in the container's borders.
    for (const ComPtr<IOleInPlaceUIWindow>& window : around)
        if (window && isLatest(change))
            window->SetBorderSpace(nullptr);
    return S_OK;
}

// Not every container ends the UI activation when the focus goes elsewhere, so a control that is
// UI active already takes the focus again.
void InPlacePart::takeFocus() noexcept {
    if (const HWND window = window_.handle(); window && ::GetFocus() != window)
        ::SetFocus(window);
}

void InPlacePart::hide() noexcept {
    UIDeactivate();
    if (active())
        ::ShowWindow(window_.handle(), SW_HIDE);
}

RECT InPlacePart::sized(RECT position) const noexcept {
    // A container may give any numbers.
    position = {bounded(position.left), bounded(position.top), bounded(position.right),
                bounded(position.bottom)};
    if (extent_.fixed()) {
        const SIZE size = extent_.pixels();
        position.right = position.left + size.cx;
        position.bottom = position.top + size.cy;
    }
    return position;
}

void InPlacePart::place(RECT position, const RECT* clip) noexcept {
    const ComPtr<IUnknown> alive(&object());
    position_ = sized(position);
    RECT visible = position_;
    if (clip && !::IntersectRect(&visible, &position_, clip))
        visible = position_;
    ::OffsetRect(&visible, -position_.left, -position_.top);
    visible_ = visible;
    showVisiblePart();
    if (active())
        window_.moveTo(position_);
}

// At run time an invisible control covers nothing of the form and takes none of its clicks,
// though its window is there.
void InPlacePart::showVisiblePart() noexcept {
    // The container is asked, and may deactivate the control meanwhile.
    const bool hidden = !class_.visibleAtRunTime && clientSite_.userMode();
    if (!active())
        return;
    const RECT all{0, 0, position_.right - position_.left, position_.bottom - position_.top};
    const RECT shown = hidden ? RECT{} : visible_;
    Region region(::EqualRect(&shown, &all) ? nullptr : ::CreateRectRgnIndirect(&shown));
    if (::SetWindowRgn(window_.handle(), region.get(), TRUE))
        static_cast<void>(region.release()); // the system's now
}

void InPlacePart::extentChanged() noexcept {
    const ComPtr<IUnknown> alive(&object());
    const SIZE size = extent_.pixels(); // the container is asked for its units
    if (!active())
        return;
    const RECT wanted{position_.left, position_.top, position_.left + size.cx,
                      position_.top + size.cy};
    const ComPtr<IOleInPlaceSite> site = site_;
    site->OnPosRectChange(&wanted);
}

void InPlacePart::windowLost() noexcept {
    // What releases them may call in again, so they go after the state has changed.
    const ComPtr<IOleInPlaceSite> site = std::move(site_);
    const ComPtr<IOleInPlaceFrame> frame = std::move(frame_);
    const ComPtr<IOleInPlaceUIWindow> document = std::move(document_);
    changeTo(State::inactive);
}

HRESULT InPlacePart::GetWindow(HWND* result) {
    return enterFilling(result, [&] {
        if (!active())
            return E_FAIL;
        *result = window_.handle();
        return S_OK;
    });
}

HRESULT InPlacePart::ContextSensitiveHelp(BOOL) {
    return E_NOTIMPL;
}

HRESULT InPlacePart::InPlaceDeactivate() {
    return enter([&] {
        UIDeactivate();
        if (state_ == State::activating || state_ == State::active)
            leave();
    });
}

// Ends the activation. The window, if it may be in the container's, is taken out first.
void InPlacePart::leave() noexcept {
    const unsigned change = changeTo(State::deactivating);
    const bool announced = announced_;
    const ComPtr<IOleInPlaceSite> site = std::move(site_);
    const ComPtr<IOleInPlaceFrame> frame = std::move(frame_);
    const ComPtr<IOleInPlaceUIWindow> document = std::move(document_);
    window_.moveOut();
    if (isLatest(change)) // unless the window was destroyed
        changeTo(State::inactive);
    if (announced)
        site->OnInPlaceDeactivate();
}

HRESULT InPlacePart::UIDeactivate() {
    return enter([&] {
        uiWanted_ = false;
        if (state_ != State::uiActive)
            return;
        const ComPtr<IOleInPlaceSite> site = site_;
        const ComPtr<IOleInPlaceFrame> frame = frame_;
        const ComPtr<IOleInPlaceUIWindow> document = document_;
        changeTo(State::active);
        if (frame)
            frame->SetActiveObject(nullptr, nullptr);
        if (document)
            document->SetActiveObject(nullptr, nullptr);
        site->OnUIDeactivate(FALSE);
    });
}

HRESULT InPlacePart::SetObjectRects(LPCRECT position, LPCRECT clip) {
    if (!position)
        return E_POINTER;
    return enter([&] {
        if (!active())
            return E_UNEXPECTED;
        place(*position, clip);
        const bool refused = !::EqualRect(position, &position_);
        if (refused && extent_.fixed() && !std::exchange(askingForSize_, true)) {
            extentChanged();
            askingForSize_ = false;
        }
        return S_OK;
    });
}

HRESULT InPlacePart::ReactivateAndUndo() {
    return INPLACE_E_NOTUNDOABLE;
}

// The controls have no accelerators of their own: every key is the container's.
HRESULT InPlacePart::TranslateAccelerator(MSG* message) {
    if (!message)
        return E_POINTER;
    return enter([&] { return clientSite_.translateAccelerator(*message) ? S_OK : S_FALSE; });
}

HRESULT InPlacePart::OnFrameWindowActivate(BOOL) {
    return S_OK;
}

HRESULT InPlacePart::OnDocWindowActivate(BOOL activated) {
    return activated ? S_OK : UIDeactivate();
}

HRESULT InPlacePart::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) {
    return S_OK;
}

HRESULT InPlacePart::EnableModeless(BOOL) {
    return S_OK;
}

} // namespace corvina
