#pragma once

// A device context and bounds for drawing a picture the right way up, whichever way the axes of a
// container's coordinates point and whichever corner its bounds begin with.
//
// Drawing then happens in pixels, with the first corner above and to the left of the second. Only a
// metafile keeps its own units, for its pixels are not known until it is played, and so does a
// device context that rotates. The device context is as before when the object ends.

#include "platform/SavedContext.h"

#include <optional>
#include <windows.h>

namespace corvina {

class UprightDrawing {
public:
    UprightDrawing(HDC dc, const RECT& bounds) noexcept;

    // Nothing if no pixel of the picture can be seen.
    [[nodiscard]] const std::optional<RECT>& bounds() const noexcept { return bounds_; }

private:
    SavedContext saved_;
    std::optional<RECT> bounds_;
};

} // namespace corvina
