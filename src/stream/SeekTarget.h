#pragma once

// What SeekTo is asked for, judged in the same way for every source.

#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <optional>
#include <type_traits>

namespace corvina {

// The place to go to: what atPercent or atSecond returns for the value, and 0 for any other mode.
// Nothing if the value is out of range: a percentage below 0 or above lastPercent, a second below 0
// or beyond the duration. The duration, which may raise an error, is asked for seconds alone.
template <typename AtPercent, typename AtSecond>
[[nodiscard]] auto seekTarget(cSoundInf& info, std::int32_t value, std::int32_t mode,
                              AtPercent atPercent, AtSecond atSecond,
                              std::int32_t lastPercent = 100)
    -> std::optional<std::invoke_result_t<AtPercent>> {
    if (mode == SeekMode::percent) {
        if (value < 0 || value > lastPercent)
            return std::nullopt;
        return atPercent();
    }
    if (mode == SeekMode::seconds) {
        const double seconds = info.Duration() / 1000.0;
        if (value < 0 || seconds < value)
            return std::nullopt;
        return atSecond();
    }
    return std::invoke_result_t<AtPercent>{};
}

} // namespace corvina
