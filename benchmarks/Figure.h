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

// The same for a figure that is shown only, because its greater part is the system's.
void reportWithoutGoal(const std::string& name, const std::string& unit, double value,
                       double reference);

[[nodiscard]] double median(std::vector<double> values);

struct Pair {
    double value;
    double reference;
    double ratio; // for medians that of the single turns' ratios
};

struct Turns {
    std::vector<double> values, references, ratios;
};

// Measures both once without counting it, then so many times in turns.
template <typename Measure, typename MeasureReference>
[[nodiscard]] Turns inTurns(int turns, Measure measure, MeasureReference measureReference) {
    (void)measureReference();
    (void)measure();
    Turns all;
    for (int turn = 0; turn < turns; ++turn) {
        all.references.push_back(measureReference());
        all.values.push_back(measure());
        all.ratios.push_back(all.values.back() / all.references.back());
    }
    return all;
}

// The medians.
template <typename Measure, typename MeasureReference>
[[nodiscard]] Pair interleaved(int turns, Measure measure, MeasureReference measureReference) {
    const Turns all = inTurns(turns, measure, measureReference);
    return {median(all.values), median(all.references), median(all.ratios)};
}

// The shortest times: for what is too short for a mean on a machine that does other work too.
template <typename Measure, typename MeasureReference>
[[nodiscard]] Pair shortest(int turns, Measure measure, MeasureReference measureReference) {
    const Turns all = inTurns(turns, measure, measureReference);
    const double value = *std::min_element(all.values.begin(), all.values.end());
    const double reference = *std::min_element(all.references.begin(), all.references.end());
    return {value, reference, value / reference};
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
