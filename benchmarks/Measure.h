#pragma once

// Measuring and reporting for the graph's benchmarks.

#include <algorithm>
#include <cstdio>
#include <limits>
#include <windows.h>

namespace corvina::bench {

[[nodiscard]] inline double secondsNow() {
    LARGE_INTEGER frequency, count;
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Seconds of one call: the quickest of several rounds, so that other work of the machine counts
// little.
template <typename Body>
[[nodiscard]] double secondsOf(int rounds, int calls, Body&& body) {
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < rounds; ++round) {
        const double start = secondsNow();
        for (int call = 0; call < calls; ++call)
            body();
        best = std::min(best, (secondsNow() - start) / calls);
    }
    return best;
}

// One line of JSON: a figure as a ratio to a reference measured in the same run, or to its limit.
inline void report(const char* name, double value, double reference, const char* unit,
                   const char* goal) {
    std::printf("{\"name\":\"%s\",\"ratio\":%.3f,\"goal\":\"%s\",\"value\":%.3f,"
                "\"reference\":%.3f,\"unit\":\"%s\"}\n",
                name, value / reference, goal, value, reference, unit);
    std::fflush(stdout);
}

} // namespace corvina::bench
