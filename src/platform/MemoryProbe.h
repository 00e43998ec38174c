#pragma once

// Whether a range of this process's memory may be read or written. The pages are only asked about,
// never touched, so a guard page stays armed and nothing faults. A range of no bytes always may;
// one that runs past the end of the address space never may.

#include <cstddef>

namespace corvina {

[[nodiscard]] bool isReadable(const void* address, std::size_t bytes) noexcept;
[[nodiscard]] bool isWritable(const void* address, std::size_t bytes) noexcept;

} // namespace corvina
