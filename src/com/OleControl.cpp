#include "com/OleControl.h"

#include "com/Guard.h"
#include "runtime/RuntimeError.h"

namespace corvina {

OleControl::OleControl(IUnknown& whole, ControlHooks& hooks, const ControlClass& controlClass)
    : whole_(whole), hooks_(hooks), class_(controlClass), extent_(controlClass, site_),
      properties_(controlClass, extent_), window_(*this),
      classInfo_(whole, controlClass.clsid, controlClass.events),
      errorInfo_(whole, {controlClass.primary}), connections_(whole, controlClass.events),
      eventSource_(whole, connections_.events()), persist_(whole, *this), inPlace_(whole, *this),
      object_(whole, *this), view_(whole, *this), data_(whole, *this),
      quickActivate_(whole, *this) {}

OleControl::~OleControl() {
    disconnect();
}

void* OleControl::find(REFIID iid) noexcept {
    for (const auto found :
         {object_.find(iid), view_.find(iid), inPlace_.find(iid), persist_.find(iid),
          connections_.find(iid), classInfo_.find(iid), errorInfo_.find(iid),
          quickActivate_.find(iid), class_.hasPicture ? data_.find(iid) : nullptr})
        if (found)
            return found;
    return nullptr;
}

SIZE OleControl::pixelSize() const {
    if (const HWND window = window_.handle(); window && inPlace_.active()) {
        RECT client{};
        ::GetClientRect(window, &client);
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
    connections_.tellChanged(id);
    return S_OK;
}

void OleControl::stateLoaded() {
    hooks_.propertiesChanged(-1);
    connections_.tellChanged(DISPID_UNKNOWN);
    pictureChanged();
}

void OleControl::pictureChanged() noexcept {
    const ComPtr<IUnknown> alive(&whole_);
    if (const HWND window = window_.handle())
        ::InvalidateRect(window, nullptr, FALSE);
    view_.tellChanged();
    data_.tellChanged();
}

void OleControl::disconnect() noexcept {
    connections_.disconnectAll();
    inPlace_.InPlaceDeactivate();
    window_.silence();
}

void OleControl::windowLost() {
    inPlace_.windowLost();
    hooks_.windowLost();
}

bool OleControl::windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
    case WM_ERASEBKGND:
        result = TRUE; // drawing covers everything
        return true;
    case WM_PAINT:
        paint(window_.handle());
        return true;
    case WM_PRINTCLIENT: {
        RECT client{};
        ::GetClientRect(window_.handle(), &client);
        hooks_.draw(reinterpret_cast<HDC>(wParam), client);
        return true;
    }
    case WM_SIZE:
        hooks_.windowResized({LOWORD(lParam), HIWORD(lParam)});
        return true;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        site_.tellFocus(message == WM_SETFOCUS);
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

void OleControl::paint(HWND window) {
    PAINTSTRUCT paint{};
    const HDC dc = ::BeginPaint(window, &paint);
    RECT client{};
    ::GetClientRect(window, &client);
    try {
        hooks_.draw(dc, client);
    } catch (...) {
        // The window must not stay invalid: it would be painted for ever.
        ::EndPaint(window, &paint);
        throw;
    }
    ::EndPaint(window, &paint);
}

} // namespace corvina
