#pragma once

// What the player control shows: while a form is designed a loudspeaker, so that it can be found
// and taken hold of; at run time only the container's background.

#include <windows.h>

namespace corvina {

void drawPlayerGlyph(HDC dc, const RECT& bounds, COLORREF background, bool designing);

} // namespace corvina
