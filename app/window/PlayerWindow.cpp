#include "window/PlayerWindow.h"

#include "window/Commands.h"
#include "window/FileChoice.h"
#include "window/KeyRouting.h"

#include <algorithm>
#include <windowsx.h>

#include <commctrl.h>

namespace corvina::app {

namespace {

constexpr const wchar_t* className = L"CorvinaPlayer";
constexpr long wheelStep = 5; // of the volume

void registerKind(HINSTANCE instance, WNDPROC procedure) {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = procedure;
    kind.hInstance = instance;
    kind.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    kind.hIcon = LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_APPLICATION));
    kind.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    kind.lpszMenuName = MAKEINTRESOURCEW(IDR_MENU);
    kind.lpszClassName = className;
    RegisterClassExW(&kind);
}

} // namespace

PlayerWindow::PlayerWindow(PlayQueue& queue, const Options& options)
    : queue_(queue), settings_(Settings::load()), forPicture_(!options.pictureFile.empty()) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    keys_ = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_KEYS));
    registerKind(instance, &procedure);

    // A window for a picture has no user. On a display without a window manager, a window with a
    // frame or an active one would wait seconds for a manager.
    window_ = CreateWindowExW(WS_EX_ACCEPTFILES, className, L"Corvina",
                              (forPicture_ ? WS_POPUP : WS_OVERLAPPEDWINDOW) | WS_CLIPCHILDREN,
                              CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, nullptr, nullptr, instance, this);
    if (!window_)
        _com_issue_error(HRESULT_FROM_WIN32(GetLastError()));
    const HMENU menu = GetMenu(window_);
    discs_ = DiscMenu(GetSubMenu(menu, POS_DISCS));
    recent_ = RecentMenu(GetSubMenu(GetSubMenu(menu, POS_FILE), POS_RECENT));
    dragMessage_ = RegisterWindowMessage(DRAGLISTMSGSTRING);
    controls_ = std::make_unique<PlayerControls>(window_);
    graph_ = std::make_unique<GraphView>(window_);
    graphChoices_ = std::make_unique<GraphChoices>(*graph_, settings_, window_);
    sound_ = std::make_unique<SoundControls>(queue_.player(), *controls_, settings_, menu);
    devices_ = std::make_unique<DeviceChoice>(queue_, *controls_, settings_);
    view_ = std::make_unique<QueueView>(queue_, *controls_, window_);
    if (options.style)
        graphChoices_->setStyle(*options.style);
    graph_->follow(queue_.player().control());
    audioPatterns_ = queue_.player().extensions();
    devices_->fill(options.device);
    showModes();
    view_->showTracks();
    view_->showState();

    RECT place = settings_.place;
    if (IsRectEmpty(&place) || !MonitorFromRect(&place, MONITOR_DEFAULTTONULL))
        place = firstPlace();
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window_, forPicture_ ? SW_SHOWNOACTIVATE : SW_SHOW);
    UpdateWindow(window_);
    if (!forPicture_)
        SetFocus(controls_->list().window());
}

// The place if none is remembered: a good size, if the screen is large enough for it.
RECT PlayerWindow::firstPlace() const {
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    const int width = std::min<int>(controls_->scaled(640), screen.right - screen.left);
    const int wanted = leastSize().cy + controls_->scaled(180);
    const int height = std::min<int>(wanted, screen.bottom - screen.top);
    const int left = screen.left + (screen.right - screen.left - width) / 3;
    const int top = screen.top + (screen.bottom - screen.top - height) / 3;
    return {left, top, left + width, top + height};
}

PlayerWindow::~PlayerWindow() {
    view_.reset(); // no message is handled from here on
    graph_.reset();
    DestroyWindow(window_);
    UnregisterClassW(className, GetModuleHandleW(nullptr));
}

LRESULT CALLBACK PlayerWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(
            window, GWLP_USERDATA,
            reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    auto* const self = reinterpret_cast<PlayerWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self || !self->view_) // still being made
        return DefWindowProcW(window, message, wParam, lParam);
    try {
        return self->handle(message, wParam, lParam);
    } catch (const _com_error& error) {
        const _bstr_t words = error.Description();
        self->onFailed(words.length() > 0 ? static_cast<const wchar_t*>(words) : L"COM failure");
        return 0;
    }
}

LRESULT PlayerWindow::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        onCommand(LOWORD(wParam), HIWORD(wParam));
        if (lParam != 0 && usesMouse_ && HIWORD(wParam) == BN_CLICKED)
            SetFocus(controls_->list().window()); // so that the space bar is pause again
        return 0;
    case WM_HSCROLL:
    case WM_VSCROLL:
        onSlider(reinterpret_cast<HWND>(lParam), LOWORD(wParam));
        return 0;
    case WM_MOUSEWHEEL:
        sound_->changeVolume(GET_WHEEL_DELTA_WPARAM(wParam) > 0 ? wheelStep : -wheelStep);
        return 0;
    case WM_APPCOMMAND:
        return onMediaKey(GET_APPCOMMAND_LPARAM(lParam))
                   ? TRUE
                   : DefWindowProcW(window_, message, wParam, lParam);
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_LBUTTONDOWN &&
            graph_->contains(
                ChildWindowFromPoint(window_, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})))
            graphChoices_->showNextLook();
        return 0;
    case WM_DROPFILES:
        openPaths(takeDroppedFiles(reinterpret_cast<HANDLE>(wParam)), !queue_.isActive());
        return 0;
    case WM_INITMENUPOPUP:
        onMenuOpens(reinterpret_cast<HMENU>(wParam));
        return DefWindowProcW(window_, message, wParam, lParam);
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED)
            layOut();
        return 0;
    case WM_GETMINMAXINFO: {
        const SIZE least = leastSize();
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
        return 0;
    }
    case WM_CLOSE:
        close();
        return 0;
    default:
        if (message == dragMessage_)
            return onDrag(lParam);
        return DefWindowProcW(window_, message, wParam, lParam);
    }
}

bool PlayerWindow::translate(MSG& message) {
    if (!open_)
        return false;
    if (message.message == WM_LBUTTONUP || message.message == WM_KEYDOWN)
        usesMouse_ = message.message == WM_LBUTTONUP;
    if (!belongsToFocus(message) && TranslateAcceleratorW(window_, keys_, &message))
        return true;
    return IsDialogMessageW(window_, &message) != FALSE;
}

void PlayerWindow::onMenuOpens(HMENU menu) {
    if (discs_.is(menu))
        discs_.fill();
    if (recent_.is(menu))
        recent_.fill(settings_.recentFiles);
}

void PlayerWindow::layOut() {
    graph_->moveTo(controls_->layOut());
}

// Of the whole window, with its frame and its menu.
SIZE PlayerWindow::leastSize() const {
    const SIZE inside = controls_->leastSize();
    RECT area{0, 0, inside.cx, inside.cy};
    AdjustWindowRect(&area, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), TRUE);
    return {area.right - area.left, area.bottom - area.top};
}

void PlayerWindow::enlarge() {
    RECT area{};
    GetWindowRect(window_, &area);
    const SIZE least = leastSize();
    const SIZE now{area.right - area.left, area.bottom - area.top};
    if (now.cx < least.cx || now.cy < least.cy)
        SetWindowPos(window_, nullptr, 0, 0, std::max(now.cx, least.cx), std::max(now.cy, least.cy),
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    layOut();
}

void PlayerWindow::close() {
    if (!open_)
        return;
    open_ = false;
    if (!forPicture_) {
        if (!IsIconic(window_))
            GetWindowRect(window_, &settings_.place);
        settings_.save();
    }
    ShowWindow(window_, SW_HIDE);
    queue_.stop();
}

void PlayerWindow::onStarted() {
    const bool hadCover = controls_->headline().cover().hasPicture();
    view_->showStarted();
    if (controls_->headline().cover().hasPicture() != hadCover)
        enlarge();
}

void PlayerWindow::onEnded() {
    const bool hadCover = controls_->headline().cover().hasPicture();
    view_->showEnded();
    if (hadCover)
        layOut();
}

void PlayerWindow::onFailed(const std::wstring& words) {
    view_->showFailure(words);
}

void PlayerWindow::onNoticed(const std::wstring& words) {
    view_->showNotice(words);
}

void PlayerWindow::onProgress() {
    view_->showPosition();
}

void PlayerWindow::onStateChanged() {
    view_->showState();
}

} // namespace corvina::app
