#include "ProgressBar.h"

#include <algorithm>
#include <cmath>

namespace corvina::app {

namespace {

constexpr std::size_t narrowestBar = 10;
constexpr std::size_t widestBar = 60;

} // namespace

std::wstring progressLine(double fraction, std::wstring_view elapsed, std::wstring_view total,
                          std::wstring_view note, std::size_t columns) {
    std::wstring times(elapsed);
    times.append(L" / ").append(total);
    if (!note.empty())
        times.append(L"  ").append(note);

    constexpr std::size_t frame = 4; // the brackets and the two blanks behind them
    if (columns < times.size() + frame + narrowestBar)
        return times.substr(0, columns);
    const std::size_t cells = std::min(columns - times.size() - frame, widestBar);
    const double held = std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
    const auto full = static_cast<std::size_t>(std::lround(held * static_cast<double>(cells)));
    return L"[" + std::wstring(full, L'#') + std::wstring(cells - full, L'.') + L"]  " + times;
}

} // namespace corvina::app
