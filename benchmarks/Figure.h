#pragma once

// How a benchmark measures and reports. A figure is compared with a reference that was measured in
// the same run, in turns with it, so that a slow or busy machine slows both.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace corvina::bench {

// The number that is compared with the goal, and in which direction.
enum class Judged { ratioAtLeast, ratioAtMost, excessAtMost, valueAtMost };

// One line of JSON on standard output. The ratio is value to reference; the excess is their
// difference.
void report(const std::string& name, const std::string& unit, double value, double reference,
            double ratio, Judged judged, double goal);

[[nodiscard]] double median(std::vector<double> values);

struct Pair {
    double value;
    double reference;
    double ratio; // median of the single turns' ratios
};

// Measures both once without counting it, then so many times in turns; returns the medians.
template <typename Measure, typename MeasureReference>
[[nodiscard]] Pair interleaved(int turns, Measure measure, MeasureReference measureReference) {
    (void)measureReference();
    (void)measure();
    std::vector<double> values, references, ratios;
    for (int turn = 0; turn < turns; ++turn) {
        references.push_back(measureReference());
        values.push_back(measure());
        ratios.push_back(values.back() / references.back());
    }
    return {median(values), median(references), median(ratios)};
}

// Seconds that the body takes.
template <typename Body>
[[nodiscard]] double secondsFor(Body body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Ends the program with a message on standard error. For a benchmark that cannot measure.
[[noreturn]] void giveUp(const std::string& why);

} // namespace corvina::bench
