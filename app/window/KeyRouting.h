#pragma once

#include <windows.h>

namespace corvina::app {

// Whether a key belongs to the control that has the focus, and is no command of the window: arrows
// of a slider, letters of a list that opens, the space bar of a button.
[[nodiscard]] bool belongsToFocus(const MSG& message);

} // namespace corvina::app
