#pragma once

// Whether a range of this process's memory can be read or written. The pages are only queried,
// never touched, so a guard page stays armed and nothing faults. True for an empty range; false for
// one that runs past the end of the address space.

#include <cstddef>

namespace corvina {

[[nodiscard]] bool isReadable(const void* address, std::size_t bytes) noexcept;
[[nodiscard]] bool isWritable(const void* address, std::size_t bytes) noexcept;

} // namespace corvina
