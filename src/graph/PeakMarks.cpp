#include "graph/PeakMarks.h"

#include <algorithm>

namespace corvina {

void PeakMarks::update(std::span<const double> levels, std::int32_t hold) {
    levels_.resize(levels.size());
    ages_.resize(levels.size());
    for (std::size_t bar = 0; bar < levels.size(); ++bar) {
        if (levels[bar] >= levels_[bar]) {
            levels_[bar] = levels[bar];
            ages_[bar] = 0;
        } else if (ages_[bar] < hold) {
            ++ages_[bar];
        } else {
            levels_[bar] = std::max(levels_[bar] - fallPerPicture, levels[bar]);
        }
    }
}

void PeakMarks::reset() noexcept {
    levels_.clear();
    ages_.clear();
}

} // namespace corvina
