#pragma once

// Times as a player shows them.

#include <cstdint>
#include <string>

namespace corvina {

// h:mm:ss, hours without leading zeros: 3725 gives 1:02:05. Of a negative number every part is
// negative: -3725 gives -1:-02:-05.
[[nodiscard]] std::wstring secondsAsTimeText(std::int32_t seconds);

} // namespace corvina
