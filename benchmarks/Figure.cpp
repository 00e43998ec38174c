#include "Figure.h"

#include <cstdio>
#include <cstdlib>

namespace corvina::bench {
namespace {

const char* wordFor(Judged judged) {
    switch (judged) {
    case Judged::ratioAtLeast:
        return "ratio>=";
    case Judged::ratioAtMost:
        return "ratio<=";
    case Judged::excessAtMost:
        return "excess<=";
    default:
        return "value<=";
    }
}

} // namespace

void report(const std::string& name, const std::string& unit, double value, double reference,
            double ratio, Judged judged, double goal) {
    std::printf("{\"name\": \"%s\", \"unit\": \"%s\", \"value\": %.4f, \"reference\": %.4f, "
                "\"ratio\": %.4f, \"judged\": \"%s\", \"goal\": %.4f}\n",
                name.c_str(), unit.c_str(), value, reference, ratio, wordFor(judged), goal);
    std::fflush(stdout);
}

void reportWithoutGoal(const std::string& name, const std::string& unit, double value,
                       double reference) {
    std::printf("{\"name\": \"%s\", \"unit\": \"%s\", \"value\": %.4f, \"reference\": %.4f, "
                "\"ratio\": %.4f, \"judged\": \"excess\", \"goal\": null}\n",
                name.c_str(), unit.c_str(), value, reference, value / reference);
    std::fflush(stdout);
}

double median(std::vector<double> values) {
    if (values.empty())
        giveUp("no runs to take a median of");
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void giveUp(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

} // namespace corvina::bench
