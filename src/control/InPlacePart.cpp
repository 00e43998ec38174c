#include "control/InPlacePart.h"

#include "platform/GdiHandles.h"

namespace corvina {

HRESULT InPlacePart::activate(bool withUi) {
    return enter([&]() -> HRESULT {
        if (!active_)
            if (const HRESULT begun = begin(); FAILED(begun))
                return begun;
        // The container may have taken the control away again meanwhile.
        if (active_) {
            ::ShowWindow(window_.ensure(), SW_SHOWNA);
            if (withUi && !uiActive_)
                return beginUi();
        }
        return S_OK;
    });
}

HRESULT InPlacePart::begin() {
    const auto site = clientSite_.get().query<IOleInPlaceSite>();
    if (!site)
        return OLE_E_NOT_INPLACEACTIVE;
    if (site->CanInPlaceActivate() != S_OK)
        return E_FAIL;
    if (const HRESULT told = site->OnInPlaceActivate(); FAILED(told))
        return told;
    HRESULT entered;
    try {
        entered = enterContainer(*site.get());
    } catch (...) {
        entered = currentExceptionToHresult(IID_IOleObject, L"");
    }
    if (FAILED(entered)) {
        frame_.reset();
        document_.reset();
        site->OnInPlaceDeactivate();
        return entered;
    }
    const ComPtr<IOleClientSite> client = clientSite_.get();
    if (client)
        client->ShowObject();
    if (active_ && extent_.fixed())
        extentChanged();
    return S_OK;
}

HRESULT InPlacePart::enterContainer(IOleInPlaceSite& site) {
    HWND container = nullptr;
    if (FAILED(site.GetWindow(&container)) || !::IsWindow(container))
        return E_FAIL;
    RECT position{}, clip{};
    OLEINPLACEFRAMEINFO frameInfo{};
    frameInfo.cb = sizeof frameInfo;
    if (const HRESULT told =
            site.GetWindowContext(frame_.put(), document_.put(), &position, &clip, &frameInfo);
        FAILED(told))
        return told;
    window_.moveInto(container, sized(position));
    site_ = ComPtr<IOleInPlaceSite>(&site);
    active_ = true;
    place(position, &clip);
    return S_OK;
}

HRESULT InPlacePart::beginUi() {
    const ComPtr<IOleInPlaceSite> site = site_;
    const ComPtr<IOleInPlaceUIWindow> around[] = {ComPtr<IOleInPlaceUIWindow>(frame_.get()),
                                                  document_};
    uiActive_ = true;
    if (const HRESULT told = site->OnUIActivate(); FAILED(told)) {
        uiActive_ = false;
        return told;
    }
    // Each of these calls may bring the container to deactivate the control.
    if (uiActive_)
        ::SetFocus(window_.ensure());
    for (const ComPtr<IOleInPlaceUIWindow>& window : around)
        if (window && uiActive_)
            window->SetActiveObject(this, class_.description);
    // No tools of our own in the container's borders.
    for (const ComPtr<IOleInPlaceUIWindow>& window : around)
        if (window && uiActive_)
            window->SetBorderSpace(nullptr);
    return S_OK;
}

void InPlacePart::hide() noexcept {
    UIDeactivate();
    if (active_)
        ::ShowWindow(window_.handle(), SW_HIDE);
}

RECT InPlacePart::sized(RECT position) const noexcept {
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
    window_.moveTo(position_);
}

// At run time a control without a picture covers nothing of the form and takes none of its clicks,
// though its window is there.
void InPlacePart::showVisiblePart() noexcept {
    // The container is asked, and may deactivate the control meanwhile.
    const bool hidden = !class_.hasPicture && clientSite_.userMode();
    if (!active_)
        return;
    const RECT all{0, 0, position_.right - position_.left, position_.bottom - position_.top};
    const RECT shown = hidden ? RECT{} : visible_;
    Region region(::EqualRect(&shown, &all) ? nullptr : ::CreateRectRgnIndirect(&shown));
    if (::SetWindowRgn(window_.handle(), region.get(), TRUE))
        static_cast<void>(region.release()); // the system's now
}

void InPlacePart::extentChanged() noexcept {
    if (!active_)
        return;
    const SIZE size = extent_.pixels();
    const RECT wanted{position_.left, position_.top, position_.left + size.cx,
                      position_.top + size.cy};
    const ComPtr<IUnknown> alive(&object());
    const ComPtr<IOleInPlaceSite> site = site_;
    site->OnPosRectChange(&wanted);
}

void InPlacePart::windowLost() noexcept {
    active_ = uiActive_ = false;
    site_.reset();
    frame_.reset();
    document_.reset();
}

HRESULT InPlacePart::GetWindow(HWND* result) {
    if (!result)
        return E_POINTER;
    *result = active_ ? window_.handle() : nullptr;
    return active_ ? S_OK : E_FAIL;
}

HRESULT InPlacePart::ContextSensitiveHelp(BOOL) {
    return E_NOTIMPL;
}

HRESULT InPlacePart::InPlaceDeactivate() {
    if (!active_)
        return S_OK;
    const ComPtr<IUnknown> alive(&object());
    UIDeactivate();
    if (!active_)
        return S_OK;
    active_ = false;
    const ComPtr<IOleInPlaceSite> site = std::move(site_);
    frame_.reset();
    document_.reset();
    window_.moveOut();
    site->OnInPlaceDeactivate();
    return S_OK;
}

HRESULT InPlacePart::UIDeactivate() {
    if (!uiActive_)
        return S_OK;
    uiActive_ = false;
    const ComPtr<IUnknown> alive(&object());
    const ComPtr<IOleInPlaceSite> site = site_;
    if (const ComPtr<IOleInPlaceFrame> frame = frame_)
        frame->SetActiveObject(nullptr, nullptr);
    if (const ComPtr<IOleInPlaceUIWindow> document = document_)
        document->SetActiveObject(nullptr, nullptr);
    site->OnUIDeactivate(FALSE);
    return S_OK;
}

HRESULT InPlacePart::SetObjectRects(LPCRECT position, LPCRECT clip) {
    if (!position)
        return E_POINTER;
    if (!active_)
        return E_UNEXPECTED;
    place(*position, clip);
    return S_OK;
}

HRESULT InPlacePart::ReactivateAndUndo() {
    return INPLACE_E_NOTUNDOABLE;
}

// The controls have no accelerators of their own: every key is the container's.
HRESULT InPlacePart::TranslateAccelerator(MSG* message) {
    if (!message)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&object());
    return clientSite_.translateAccelerator(*message) ? S_OK : S_FALSE;
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
