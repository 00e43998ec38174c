#pragma once

// The number of the run-time error that a body raises; 0 if it raises none.

#include "runtime/RuntimeError.h"

#include <cstdint>

namespace corvina::test {

template <typename Body>
std::int32_t errorNumberOf(Body&& body) {
    try {
        body();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace corvina::test
