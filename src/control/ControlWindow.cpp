#include "control/ControlWindow.h"

#include "com/ComPtr.h"
#include "com/Module.h"
#include "runtime/RuntimeError.h"

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

void setStyle(HWND window, DWORD style) noexcept {
    const LONG_PTR kept =
        ::GetWindowLongPtrW(window, GWL_STYLE) & ~static_cast<LONG_PTR>(WS_POPUP | WS_CHILD);
    ::SetWindowLongPtrW(window, GWL_STYLE, static_cast<LONG>(kept) | static_cast<LONG>(style));
}

} // namespace

HWND ControlWindow::ensure() {
    if (window_)
        return window_;
    static const WindowClass windowClass(&ControlWindow::procedure);
    // The window is known from its first message on: what is called during its creation may ask for
    // it, and must not make a second one.
    ::CreateWindowExW(WS_EX_NOPARENTNOTIFY, className, L"",
                      WS_POPUP | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0, 0, 0, nowhere, nullptr,
                      windowClass.instance(), this);
    if (!window_)
        throw RuntimeError(7, L"Out of memory");
    return window_;
}

bool ControlWindow::moveInto(HWND container, const RECT& position) {
    const HWND window = ensure();
    const unsigned move = ++moves_;
    // A child style before the parent and a popup style after it is gone, as SetParent asks.
    setStyle(window, WS_CHILD);
    if (move != moves_)
        return false;
    const bool moved = ::SetParent(window, container) != nullptr;
    if (move != moves_)
        return false;
    if (!moved) {
        setStyle(window, WS_POPUP);
        throw RuntimeError(5, L"The container's window takes no child");
    }
    moveTo(position);
    return move == moves_;
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
    if (mayGoOn())
        ::SetParent(window, nowhere);
    if (mayGoOn())
        setStyle(window, WS_POPUP);
}

void ControlWindow::silence() noexcept {
    if (window_)
        ::SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

void ControlWindow::destroy() noexcept {
    silence();
    ++moves_;
    if (const HWND window = std::exchange(window_, nullptr))
        ::DestroyWindow(window);
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
    if (!self || self->window_ != window)
        return ::DefWindowProcW(window, message, wParam, lParam);

    const ComPtr<IUnknown> alive(&self->client_.windowOwner());
    try {
        LRESULT result = 0;
        if (message == WM_DESTROY) {
            ++self->moves_;
            self->client_.windowLost();
        } else if (message == WM_NCDESTROY) {
            ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            self->window_ = nullptr;
            ++self->moves_;
        } else if (self->client_.windowMessage(message, wParam, lParam, result)) {
            return result;
        }
    } catch (...) {
        // A window procedure is no place to throw through.
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

} // namespace corvina
