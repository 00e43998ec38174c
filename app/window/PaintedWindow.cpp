#include "window/PaintedWindow.h"

#include "Owners.h"

namespace corvina::app {

namespace {

constexpr const wchar_t* className = L"CorvinaPainted";

} // namespace

PaintedWindow::PaintedWindow(HWND parent) {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.style = CS_HREDRAW | CS_VREDRAW;
    kind.lpfnWndProc = &procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    kind.lpszClassName = className;
    RegisterClassExW(&kind); // fails from the second time on, which does no harm
    window_ = CreateWindowExW(0, className, nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                              nullptr, kind.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

PaintedWindow::~PaintedWindow() {
    if (window_)
        DestroyWindow(window_);
}

LRESULT CALLBACK PaintedWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<PaintedWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && message == WM_NCDESTROY)
        self->window_ = nullptr;
    if (self && message == WM_PAINT) {
        self->onPaint();
        return 0;
    }
    if (message == WM_ERASEBKGND)
        return 1;
    return DefWindowProcW(window, message, wParam, lParam);
}

// Into memory first: what is seen is never half painted.
void PaintedWindow::onPaint() {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(window_, &painting);
    RECT area{};
    GetClientRect(window_, &area);
    if (dc && !IsRectEmpty(&area)) {
        const Bitmap bitmap(CreateCompatibleBitmap(dc, area.right, area.bottom));
        const MemoryContext memory(CreateCompatibleDC(dc));
        if (bitmap && memory) {
            const HGDIOBJ former = SelectObject(memory.get(), bitmap.get());
            paint(memory.get(), area);
            BitBlt(dc, 0, 0, area.right, area.bottom, memory.get(), 0, 0, SRCCOPY);
            SelectObject(memory.get(), former);
        }
    }
    EndPaint(window_, &painting);
}

} // namespace corvina::app
