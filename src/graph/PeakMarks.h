#pragma once

// A mark above each bar that stays at the bar's highest level for some pictures and then sinks.

#include <cstdint>
#include <span>
#include <vector>

namespace corvina {

class PeakMarks {
public:
    static constexpr double fallPerPicture = 0.02;

    // One picture on. levels: of the bars; hold: pictures that a mark stays.
    void update(std::span<const double> levels, std::int32_t hold);
    void reset() noexcept;

    // Each 0 ... 1, as many as there were bars.
    [[nodiscard]] std::span<const double> levels() const noexcept { return levels_; }

private:
    std::vector<double> levels_;
    std::vector<std::int32_t> ages_; // pictures since the mark was last lifted
};

} // namespace corvina
