#pragma once

// One line of text that shows how far a playback is.

#include <string>
#include <string_view>

namespace corvina::app {

// "[####......]  0:00:03 / 0:00:08  paused", as wide as columns allow (the bar alone shrinks, and
// vanishes below a width of 10). fraction is held between 0 and 1.
[[nodiscard]] std::wstring progressLine(double fraction, std::wstring_view elapsed,
                                        std::wstring_view total, std::wstring_view note,
                                        std::size_t columns);

} // namespace corvina::app
