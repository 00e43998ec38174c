#pragma once

// The 32-bit number that a value of a host stands for.

#include <cstdint>
#include <oaidl.h>
#include <optional>

namespace corvina {

// Nothing where the value is no number, or more than 32 bits. An unsigned number above the signed
// ones, as the colours of the system are, keeps its bits.
[[nodiscard]] std::optional<std::int32_t> numberOf(const VARIANT& value) noexcept;

} // namespace corvina
