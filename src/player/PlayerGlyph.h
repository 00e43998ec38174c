#pragma once

// What the player control shows: a loudspeaker while a form is designed, so that it can be found
// and moved; at run time only the container's background.

#include <windows.h>

namespace corvina {

void drawPlayerGlyph(HDC dc, const RECT& bounds, COLORREF background, bool designing);

} // namespace corvina
