#pragma once

// The picture that the graph shows while a form is designed: made-up samples in the current style
// and colours, so that the effect of every property is visible at once.

#include "graph/GraphSettings.h"

namespace corvina {

// bounds: logical units; size: of the control in pixels, border included.
void paintSamplePicture(HDC dc, const RECT& bounds, SIZE size, const GraphSettings& settings);

} // namespace corvina
