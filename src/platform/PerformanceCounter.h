#pragma once

// The calls that measure time with the system's high-resolution counter.

#include <windows.h>

namespace corvina {

struct PerformanceCounterApi {
    decltype(&::QueryPerformanceFrequency) frequency = &::QueryPerformanceFrequency;
    decltype(&::QueryPerformanceCounter) count = &::QueryPerformanceCounter;
};

inline const PerformanceCounterApi systemPerformanceCounter;

} // namespace corvina
