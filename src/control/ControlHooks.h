#pragma once

// What one control adds to the control base. Every hook may throw; nothing reaches the host.

#include <optional>
#include <windows.h>

namespace corvina {

class ControlHooks {
public:
    // Draws the whole control into bounds, which are logical units of any device context: the
    // window's, a printer's or a metafile's.
    virtual void draw(HDC dc, const RECT& bounds) = 0;
    // A message of the control's window that the base leaves to the control; true with the result
    // if the control has handled it. Painting, focus and destruction are the base's.
    virtual bool windowMessage(UINT, WPARAM, LPARAM, LRESULT&) { return false; }
    // The window's client area has a new size in pixels; not called without a window.
    virtual void windowResized(SIZE) {}
    // Somebody else destroys the window. It can still be used during this call, not after it; the
    // next use of the control's window makes a new one.
    virtual void windowLost() {}
    // The control's window is another one; the window for messages is still the same.
    virtual void windowReplaced() {}
    // A property has a new value (its index in the class's table), or, without an index, all have.
    virtual void propertiesChanged(std::optional<int>) {}

protected:
    ~ControlHooks() = default;
};

} // namespace corvina
