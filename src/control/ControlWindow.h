#pragma once

// A control's window. It starts as a message-only window; in-place activation makes the same window
// a child of the container's, deactivation takes it out again, so that its handle stays good. It
// must be taken out before the container's window is destroyed.
//
// Windows refuses to move a window into one of another DPI awareness. For such a container a second
// window is made, inside the container's, and is the control's window from then on. The first one
// stays where it is, unseen: devices post their messages to it, and their window cannot be changed.

#include "platform/WindowApi.h"

#include <cstdint>
#include <unknwn.h>
#include <windows.h>

namespace corvina {

class ControlWindow {
public:
    // What somebody else has destroyed: the control's only window; its window in the container, so
    // that it goes back to the first one; or that first one alone.
    enum class Lost : std::uint8_t { only, inContainer, first };

    // Whose window it is. Every message keeps the owner alive until it has been handled.
    class Client {
    public:
        virtual IUnknown& windowOwner() noexcept = 0;
        // True with the result if the message was handled.
        virtual bool windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) = 0;
        // The window is still there during the call.
        virtual void windowLost(Lost which) = 0;
        // handle() is another window now.
        virtual void windowReplaced() = 0;

    protected:
        ~Client() = default;
    };

    explicit ControlWindow(Client& client) noexcept : client_(client) {}
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;
    ~ControlWindow() { destroy(); }

    // Null if no window has been needed yet.
    [[nodiscard]] HWND handle() const noexcept { return window_; }
    // Makes the window if there is none; raises Out of memory (7) if the system has none left.
    [[nodiscard]] HWND ensure();
    // The window that stays the same whatever containers the control is put into.
    [[nodiscard]] HWND ensureFirst();
    // Puts the window inside a container's, without showing it. False if something that was called
    // meanwhile has moved the window again or destroyed it. Raises Invalid procedure call (5) if
    // the container's window takes no child.
    bool moveInto(HWND container, const RECT& position);
    void moveTo(const RECT& position) noexcept;
    // Hides the window and takes it out of the container's.
    void moveOut() noexcept;
    // From now on the client is called no more.
    void silence() noexcept;
    // Destroys the windows in silence.
    void destroy() noexcept;

    // For tests: another table of platform functions; null restores the system's.
    static void useWindowApi(const WindowApi* windows) noexcept;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept;

    void make(DWORD style, HWND parent, const RECT& position) noexcept;
    [[nodiscard]] bool replaceBy(HWND container, const RECT& position);
    void goBack() noexcept;
    void lose(HWND window);
    void forget(HWND window) noexcept;

    Client& client_;
    HWND window_ = nullptr;
    HWND first_ = nullptr; // the same, unless another was made for a container
    // Counts what changes the window's place. Each step of a move sends messages to the window,
    // during which the container may begin another.
    unsigned moves_ = 0;
};

} // namespace corvina
