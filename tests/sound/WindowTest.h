#pragma once

// What tests of the player window share: the window over a queue of three files, driven by the
// messages that keys, menus, sliders and the desktop send.

#include "PlayQueue.h"
#include "SoundTest.h"
#include "window/Commands.h"
#include "window/PlayerWindow.h"

#include <memory>
#include <windows.h>

#include <commctrl.h>

namespace corvina::test {

class WindowTest : public SoundTest {
protected:
    void SetUp() override {
        SoundTest::SetUp();
        // A window that has its picture taken needs no window manager and leaves no settings.
        options.pictureFile = L"unused";
        if (IsSkipped())
            return;
        open();
    }

    void open() {
        window.reset();
        queue = std::make_unique<app::PlayQueue>(app::QueueHandlers{
            .started = [this] { window->onStarted(); },
            .ended =
                [this] {
                    ++ended;
                    window->onEnded();
                },
            .failed = [this](const std::wstring& words) { window->onFailed(words); },
            .remarked = {},
            .noticed = [this](const std::wstring& words) { window->onNoticed(words); },
            .progressed = [this] { onEventOfWindow([this] { window->onProgress(); }); },
            .stateChanged = [this] { onEventOfWindow([this] { window->onStateChanged(); }); }});
        for (int count = 0; count < 3; ++count)
            queue->add(file(signal(10 * 44100)));
        window = std::make_unique<app::PlayerWindow>(*queue, options);
    }

    // The player reports its state before there is a window, too.
    template <typename Handler>
    void onEventOfWindow(Handler handler) {
        if (window)
            handler();
    }

    void command(int number) const {
        ::SendMessageW(window->handle(), WM_COMMAND, static_cast<WPARAM>(number), 0);
    }

    [[nodiscard]] std::wstring textOf(HWND control) const {
        wchar_t text[256] = L"";
        ::GetWindowTextW(control, text, 256);
        return text;
    }

    [[nodiscard]] HWND control(int id) const { return ::GetDlgItem(window->handle(), id); }
    [[nodiscard]] HWND list() const { return control(CTL_LIST); }
    [[nodiscard]] std::wstring line(int index) const {
        std::wstring text(static_cast<std::size_t>(
                              ::SendMessageW(list(), LB_GETTEXTLEN, static_cast<WPARAM>(index), 0)),
                          L'\0');
        ::SendMessageW(list(), LB_GETTEXT, static_cast<WPARAM>(index),
                       reinterpret_cast<LPARAM>(text.data()));
        return text;
    }

    // A slider at another place, as a hand has moved it.
    void slide(int id, int position, UINT message = WM_HSCROLL) const {
        ::SendMessageW(control(id), TBM_SETPOS, TRUE, position);
        ::SendMessageW(window->handle(), message, TB_THUMBPOSITION,
                       reinterpret_cast<LPARAM>(control(id)));
        ::SendMessageW(window->handle(), message, TB_ENDTRACK,
                       reinterpret_cast<LPARAM>(control(id)));
    }
    // A key, with the focus on that control or on the window itself. Whether the window took it.
    [[nodiscard]] bool press(WPARAM key, int id = 0) const {
        MSG message{};
        message.hwnd = id == 0 ? window->handle() : control(id);
        message.message = WM_KEYDOWN;
        message.wParam = key;
        return window->translate(message);
    }
    [[nodiscard]] bool isChecked(UINT number) const {
        return (::GetMenuState(::GetMenu(window->handle()), number, MF_BYCOMMAND) & MF_CHECKED) !=
               0;
    }

    [[nodiscard]] bool waitForEnd() {
        return pumpUntil([this] { return ended > 0; });
    }

    // Whether a picture of the graph holds that colour.
    [[nodiscard]] bool graphShows(COLORREF color) const {
        const HWND graph = ::FindWindowExW(window->handle(), nullptr, L"AtlAxWin", nullptr);
        RECT area{};
        ::GetWindowRect(graph, &area);
        const HDC screen = ::GetDC(nullptr);
        bool found = false;
        for (int y = area.bottom - 1; y >= area.top && !found; y -= 2)
            for (int x = area.left; x < area.right && !found; x += 2)
                found = ::GetPixel(screen, x, y) == color;
        ::ReleaseDC(nullptr, screen);
        return found;
    }

    app::Options options;
    int ended = 0;
    std::unique_ptr<app::PlayQueue> queue;
    std::unique_ptr<app::PlayerWindow> window;
};

} // namespace corvina::test
