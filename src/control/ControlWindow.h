#pragma once

// A control's one window. It starts as a message-only window; in-place activation makes the same
// window a child of the container's, deactivation takes it out again, so that its handle stays
// good. It must be taken out before the container's window is destroyed.

#include <unknwn.h>
#include <windows.h>

namespace corvina {

class ControlWindow {
public:
    // Whose window it is. Every message keeps the owner alive until it has been handled.
    class Client {
    public:
        virtual IUnknown& windowOwner() noexcept = 0;
        // True with the result if the message was handled.
        virtual bool windowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) = 0;
        // Somebody else destroys the window, which is still there during the call.
        virtual void windowLost() = 0;

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
    // Puts the window inside a container's, without showing it. False if something that was called
    // meanwhile has moved the window again or destroyed it.
    bool moveInto(HWND container, const RECT& position);
    void moveTo(const RECT& position) noexcept;
    // Hides the window and takes it out of the container's.
    void moveOut() noexcept;
    // From now on the client is called no more.
    void silence() noexcept;
    // Destroys the window in silence.
    void destroy() noexcept;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept;

    Client& client_;
    HWND window_ = nullptr;
    // Counts what changes the window's place. Each step of a move sends messages to the window,
    // during which the container may begin another.
    unsigned moves_ = 0;
};

} // namespace corvina
