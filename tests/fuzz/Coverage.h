#pragma once

// Which places of the instrumented code a run came by. The compiler calls a hook at each of them
// (-fsanitize-coverage=trace-pc,trace-cmp). One thread.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace corvina::fuzz::coverage {

// Forgets the last run.
void begin();

// Adds what the last run reached to what is known. How many of its places, or orders of magnitude
// of visits to a place, are new.
[[nodiscard]] std::size_t learn();

// All that is known. Places count once, features once for each order of magnitude.
[[nodiscard]] std::size_t places();
[[nodiscard]] std::size_t features();
// Addresses in this program.
[[nodiscard]] std::vector<std::uintptr_t> addresses();
void forgetAll();

// Numbers that were compared in the last runs: the one that was there and the one it should equal.
struct Comparison {
    std::uint32_t found = 0;
    std::uint32_t wanted = 0;
    std::uint8_t bytes = 0; // 0 if nothing was compared
};
[[nodiscard]] const Comparison& comparison(std::size_t random);

} // namespace corvina::fuzz::coverage
