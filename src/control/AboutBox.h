#pragma once

// The box that says what this library is. Modal; may be shown without an owner (null).

#include <windows.h>

namespace corvina {

void showAboutBox(HWND owner);

} // namespace corvina
