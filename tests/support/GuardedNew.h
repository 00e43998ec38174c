#pragma once

// What a test program WITH guarded_new learns about its memory.

#include <cstddef>

namespace corvina::test {

// The largest block that operator new was asked for since the last call.
[[nodiscard]] std::size_t takeLargestBlock() noexcept;

} // namespace corvina::test
