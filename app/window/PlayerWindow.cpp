#include "window/PlayerWindow.h"

#include "window/Commands.h"
#include "window/FileChoice.h"

#include <algorithm>

#include <commctrl.h>
#include <shellapi.h>

namespace corvina::app {

namespace {

constexpr const wchar_t* className = L"CorvinaPlayer";
constexpr UINT_PTR graphTimer = 1;
constexpr UINT pictureMs = 33; // 30 pictures a second

} // namespace

PlayerWindow::PlayerWindow(PlayQueue& queue, const Options& options)
    : queue_(queue), settings_(Settings::load()), forPicture_(!options.pictureFile.empty()) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    keys_ = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_KEYS));
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = &procedure;
    kind.hInstance = instance;
    kind.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    kind.hIcon = LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_APPLICATION));
    kind.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    kind.lpszMenuName = MAKEINTRESOURCEW(IDR_MENU);
    kind.lpszClassName = className;
    RegisterClassExW(&kind);

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
    devices_ = std::make_unique<DeviceChoice>(queue_, *controls_, settings_);
    view_ = std::make_unique<QueueView>(queue_, *controls_, window_);
    applyColors();
    setGraphStyle(options.style.value_or(static_cast<AudioGraphStyle>(settings_.graphStyle)));
    devices_->fill(options.device);
    showModes();
    controls_->setSeekRange(0);
    view_->showFiles();

    RECT place = settings_.place;
    if (IsRectEmpty(&place) || !MonitorFromRect(&place, MONITOR_DEFAULTTONULL))
        place = firstPlace();
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window_, forPicture_ ? SW_SHOWNOACTIVATE : SW_SHOW);
    UpdateWindow(window_);
    SetTimer(window_, graphTimer, pictureMs, nullptr);
}

// The place if none is remembered: a good size, if the screen is large enough for it.
RECT PlayerWindow::firstPlace() const {
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    const int width = std::min<int>(controls_->scaled(620), screen.right - screen.left);
    const int height = std::min<int>(controls_->scaled(520), screen.bottom - screen.top);
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
        return 0;
    case WM_HSCROLL:
        if (controls_->isSeekBar(reinterpret_cast<HWND>(lParam)) && LOWORD(wParam) != TB_THUMBTRACK)
            queue_.seekTo(controls_->seekPosition());
        return 0;
    case WM_DROPFILES:
        openPaths(takeDroppedFiles(reinterpret_cast<HANDLE>(wParam)), !queue_.isActive());
        return 0;
    case WM_INITMENUPOPUP:
        if (discs_.is(reinterpret_cast<HMENU>(wParam)))
            discs_.fill();
        if (recent_.is(reinterpret_cast<HMENU>(wParam)))
            recent_.fill(settings_.recentFiles);
        return DefWindowProcW(window_, message, wParam, lParam);
    case WM_TIMER:
        onTimer();
        return 0;
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED)
            graph_->moveTo(controls_->layOut());
        return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {controls_->scaled(260),
                                                                 controls_->scaled(360)};
        return 0;
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
    const bool typedLetter = message.message == WM_KEYDOWN && controls_->deviceHasFocus() &&
                             GetKeyState(VK_CONTROL) >= 0;
    if (!typedLetter && TranslateAcceleratorW(window_, keys_, &message))
        return true;
    return IsDialogMessageW(window_, &message) != FALSE;
}

// May come while the graph draws, which dispatches pending messages.
void PlayerWindow::onTimer() {
    if (graph_->isDrawing())
        return;
    if (queue_.isPlaying()) {
        if (!queue_.player().isPaused())
            graph_->show(queue_.player().audioData());
        view_->showPosition();
    }
    controls_->setPlaying(queue_.isPlaying() && !queue_.player().isPaused());
    if (closeWanted_)
        close();
}

void PlayerWindow::close() {
    closeWanted_ = true;
    if (graph_->isDrawing() || !open_)
        return;
    open_ = false;
    KillTimer(window_, graphTimer);
    if (!forPicture_) {
        if (!IsIconic(window_))
            GetWindowRect(window_, &settings_.place);
        settings_.save();
    }
    ShowWindow(window_, SW_HIDE);
    queue_.stop();
}

void PlayerWindow::onStarted() {
    view_->showStarted();
}

void PlayerWindow::onEnded() {
    graph_->clear();
    view_->showEnded();
}

void PlayerWindow::onFailed(const std::wstring& words) {
    view_->showFailure(words);
}

} // namespace corvina::app
