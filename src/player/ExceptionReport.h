#pragma once

namespace corvina {

class PlayerEvents;

// Reports the exception that is being handled through Err, as "WindowProcOut" with the number and
// text of the run-time error: 7 for want of memory, 51 for what is no run-time error.
void reportCurrentException(PlayerEvents& events) noexcept;

} // namespace corvina
