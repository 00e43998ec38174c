#include "control/ControlWindow.h"

#include "com/ComPtr.h"
#include "com/Module.h"
#include "runtime/RuntimeError.h"

#include <utility>

namespace corvina {
namespace {

constexpr const wchar_t* className = L"CorvinaControl";

// The window class, there from the first window until the module is unloaded.
class WindowClass {
public:
    explicit WindowClass(WNDPROC procedure) noexcept : instance_(thisModule().handle()) {
        WNDCLASSW description{};
        // Without the redraw styles a resized window keeps its old picture.
        description.style = CS_HREDRAW | CS_VREDRAW;
        description.lpfnWndProc = procedure;
        description.hInstance = instance_;
        description.hCursor = ::LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
        description.lpszClassName = className;
        ::RegisterClassW(&description);
    }
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;
    ~WindowClass() { ::UnregisterClassW(className, instance_); }

    [[nodiscard]] HINSTANCE instance() const noexcept { return instance_; }

private:
    HINSTANCE instance_;
};

// Where the window is without a container: no broadcast reaches it there. A broadcast waits for
// every window, and a host that pumps no messages would hold up whoever sends one.
const HWND nowhere = HWND_MESSAGE;

const WindowApi* windows = &systemWindowApi;

void setStyle(HWND window, DWORD style) noexcept {
    const LONG_PTR kept =
        ::GetWindowLongPtrW(window, GWL_STYLE) & ~static_cast<LONG_PTR>(WS_POPUP | WS_CHILD);
    ::SetWindowLongPtrW(window, GWL_STYLE, static_cast<LONG>(kept) | static_cast<LONG>(style));
}

} // namespace

HWND ControlWindow::ensure() {
    if (window_)
        return window_;
    make(WS_POPUP, nowhere, {});
    if (!window_)
        throw RuntimeError(7, L"Out of memory");
    first_ = window_;
    return window_;
}

HWND ControlWindow::ensureFirst() {
    if (!first_)
        first_ = ensure();
    return first_;
}

// The window is known from its first message on: what is called during its creation may ask for it,
// and must not make another one.
void ControlWindow::make(DWORD style, HWND parent, const RECT& position) noexcept {
    static const WindowClass windowClass(&ControlWindow::procedure);
    ::CreateWindowExW(WS_EX_NOPARENTNOTIFY, className, L"",
                      style | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, position.left, position.top,
                      position.right - position.left, position.bottom - position.top, parent,
                      nullptr, windowClass.instance(), this);
}

bool ControlWindow::moveInto(HWND container, const RECT& position) {
    const HWND window = ensure();
    const unsigned move = ++moves_;
    // A child style before the parent and a popup style after it is gone, as SetParent asks.
    setStyle(window, WS_CHILD);
    if (move != moves_)
        return false;
    const bool moved = windows->setParent(window, container) != nullptr;
    if (move != moves_)
        return false;
    if (!moved) {
        setStyle(window, WS_POPUP);
        if (move != moves_)
            return false;
        const bool replaced = replaceBy(container, position);
        if (move != moves_)
            return false;
        if (!replaced)
            throw RuntimeError(5, L"The container's window takes no child");
    }
    moveTo(position);
    return move == moves_;
}

// A window that is made as a child has the DPI awareness of its parent.
bool ControlWindow::replaceBy(HWND container, const RECT& position) {
    // A window refuses itself and its own children as its parent; so does a new one.
    for (const HWND own : {window_, first_})
        if (container == own || ::IsChild(own, container))
            return false;
    if (window_ != first_)
        goBack();
    make(WS_CHILD, container, position);
    if (window_ == first_)
        return false;
    client_.windowReplaced();
    return true;
}

// To the first window, from one that cannot be taken out of its container.
void ControlWindow::goBack() noexcept {
    const HWND former = std::exchange(window_, first_);
    ::SetWindowLongPtrW(former, GWLP_USERDATA, 0);
    ::DestroyWindow(former);
    try {
        client_.windowReplaced();
    } catch (...) {
        // A timer that could not be set runs again with the next activation.
    }
}

void ControlWindow::moveTo(const RECT& position) noexcept {
    if (window_)
        ::SetWindowPos(window_, nullptr, position.left, position.top,
                       position.right - position.left, position.bottom - position.top,
                       SWP_NOZORDER | SWP_NOACTIVATE);
}

void ControlWindow::moveOut() noexcept {
    const HWND window = window_;
    if (!window)
        return;
    const unsigned move = ++moves_;
    const auto mayGoOn = [&] { return move == moves_; };
    ::ShowWindow(window, SW_HIDE);
    if (mayGoOn())
        ::SetWindowRgn(window, nullptr, FALSE);
    const bool moved = mayGoOn() && windows->setParent(window, nowhere) != nullptr;
    if (!mayGoOn())
        return;
    if (!moved && first_ && window != first_)
        goBack();
    else
        setStyle(window, WS_POPUP);
}

void ControlWindow::silence() noexcept {
    for (const HWND window : {window_, first_})
        if (window)
            ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
}

void ControlWindow::destroy() noexcept {
    silence();
    ++moves_;
    const HWND window = std::exchange(window_, nullptr);
    const HWND first = std::exchange(first_, nullptr);
    if (window)
        ::DestroyWindow(window);
    if (first && first != window)
        ::DestroyWindow(first);
}

// Somebody else destroys one of the windows.
void ControlWindow::lose(HWND window) {
    ++moves_;
    if (window != window_) {
        client_.windowLost(Lost::first);
    } else if (window == first_ || !first_) {
        client_.windowLost(Lost::only);
    } else {
        ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        window_ = first_;
        client_.windowLost(Lost::inContainer);
    }
}

void ControlWindow::forget(HWND window) noexcept {
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    ++moves_;
    if (window == window_)
        window_ = first_ != window ? first_ : nullptr;
    if (window == first_)
        first_ = window_;
}

void ControlWindow::useWindowApi(const WindowApi* replacement) noexcept {
    windows = replacement ? replacement : &systemWindowApi;
}

LRESULT CALLBACK ControlWindow::procedure(HWND window, UINT message, WPARAM wParam,
                                          LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        const auto* created = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        ::SetWindowLongPtrW(window, GWLP_USERDATA,
                            reinterpret_cast<LONG_PTR>(created->lpCreateParams));
        static_cast<ControlWindow*>(created->lpCreateParams)->window_ = window;
    }
    auto* self = reinterpret_cast<ControlWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self || (window != self->window_ && window != self->first_))
        return ::DefWindowProcW(window, message, wParam, lParam);

    const ComPtr<IUnknown> alive(&self->client_.windowOwner());
    try {
        LRESULT result = 0;
        if (message == WM_DESTROY) {
            self->lose(window);
        } else if (message == WM_NCDESTROY) {
            self->forget(window);
        } else if (window == self->window_ &&
                   self->client_.windowMessage(message, wParam, lParam, result)) {
            return result;
        }
    } catch (...) {
        // A window procedure is no place to throw through.
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

} // namespace corvina
