#pragma once

// Copies memory that may not be readable, and that another thread may free or protect at any
// moment.
//
// The pages are queried first, so a guard page stays armed. A page that becomes unreadable after
// the query ends the copy; nothing faults in the host. Any thread.

#include <cstddef>

namespace corvina {

// False if a byte cannot be read; what stands at the destination is then undefined.
[[nodiscard]] bool copyIfReadable(void* destination, const void* source,
                                  std::size_t bytes) noexcept;

} // namespace corvina
