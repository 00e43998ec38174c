#include "control/OleControl.h"

#include "runtime/RuntimeError.h"

namespace corvina {
namespace {

// Painting of a window. It ends however the drawing ends: a window that stayed invalid would be
// painted for ever.
class PaintScope {
public:
    explicit PaintScope(HWND window) noexcept
        : window_(window), dc_(::BeginPaint(window, &paint_)) {}
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;
    ~PaintScope() { ::EndPaint(window_, &paint_); }

    [[nodiscard]] HDC dc() const noexcept { return dc_; }

private:
    HWND window_;
    PAINTSTRUCT paint_{};
    HDC dc_;
};

RECT clientArea(HWND window) noexcept {
    RECT result{};
    ::GetClientRect(window, &result);
    return result;
}

} // namespace

OleControl::OleControl(IUnknown& outer, ControlHooks& hooks, const ControlClass& controlClass)
    : outer_(outer), hooks_(hooks), class_(controlClass), extent_(controlClass, site_),
      properties_(controlClass, extent_), window_(*this),
      classInfo_(outer, controlClass.clsid, controlClass.events),
      errorInfo_(outer, {controlClass.primary}), connections_(outer, controlClass.events),
      eventSource_(outer, connections_.events()),
      persist_(outer, controlClass.clsid, properties_, *this),
      inPlace_(outer, controlClass, site_, extent_, window_),
      object_(outer, controlClass, site_, extent_, properties_, inPlace_, *this),
      control_(outer, inPlace_, eventSource_, *this), view_(outer, extent_, hooks),
      data_(outer, extent_, hooks), quickActivate_(outer, object_, view_, connections_) {}

OleControl::~OleControl() {
    disconnect();
}

void* OleControl::find(REFIID iid) noexcept {
    for (const auto found :
         {object_.find(iid), control_.find(iid), view_.find(iid), inPlace_.find(iid),
          persist_.find(iid), connections_.find(iid), classInfo_.find(iid), errorInfo_.find(iid),
          quickActivate_.find(iid), class_.visibleAtRunTime ? data_.find(iid) : nullptr})
        if (found)
            return found;
    return nullptr;
}

SIZE OleControl::pixelSize() const {
    if (const HWND window = window_.handle(); window && inPlace_.active()) {
        const RECT client = clientArea(window);
        return {client.right, client.bottom};
    }
    return extent_.pixels();
}

HRESULT OleControl::setProperty(int index, std::int32_t value) {
    if (!properties_.accepts(index, value))
        throw RuntimeError(380, L"Invalid property value");
    const DISPID id = class_.properties[static_cast<std::size_t>(index)].id;
    if (properties_.value(index) == value)
        return S_OK;
    if (!connections_.mayChange(id))
        return S_FALSE;
    properties_.set(index, value);
    hooks_.propertiesChanged(index);
    connections_.notifyChanged(id);
    return S_OK;
}

void OleControl::stateLoaded() {
    hooks_.propertiesChanged(std::nullopt);
    connections_.notifyChanged(DISPID_UNKNOWN);
    pictureChanged();
}

void OleControl::pictureChanged() noexcept {
    const ComPtr<IUnknown> alive(&outer_);
    if (const HWND window = window_.handle())
        ::InvalidateRect(window, nullptr, FALSE);
    view_.notifyChanged();
    data_.notifyChanged();
}

void OleControl::paintNow() noexcept {
    if (const HWND window = window_.handle())
        ::UpdateWindow(window);
}

void OleControl::disconnect() noexcept {
    connections_.disconnectAll();
    inPlace_.InPlaceDeactivate();
    window_.silence();
}

void OleControl::windowLost(ControlWindow::Lost which) {
    if (which != ControlWindow::Lost::first)
        inPlace_.windowLost();
    if (which == ControlWindow::Lost::inContainer)
        hooks_.windowReplaced();
    else
        hooks_.windowLost();
}

bool OleControl::windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
    case WM_ERASEBKGND:
        result = TRUE; // drawing covers everything
        return true;
    case WM_PAINT:
        hooks_.draw(PaintScope(window_.handle()).dc(), clientArea(window_.handle()));
        return true;
    case WM_PRINTCLIENT:
        hooks_.draw(reinterpret_cast<HDC>(wParam), clientArea(window_.handle()));
        return true;
    case WM_SIZE:
        hooks_.windowResized({LOWORD(lParam), HIWORD(lParam)});
        return true;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        site_.notifyFocus(message == WM_SETFOCUS);
        return true;
    case WM_LBUTTONDOWN:
        if (inPlace_.active())
            inPlace_.activate(true);
        break;
    default:
        break;
    }
    return hooks_.windowMessage(message, wParam, lParam, result);
}

} // namespace corvina
