#include "graph/AmplitudeCurve.h"

#include "runtime/Rounding.h"

#include <algorithm>
#include <cstddef>

namespace corvina {
namespace {

// The scale does not follow the samples: a quiet passage looks quiet.
constexpr double scale = 32767.0;

double average(const SampleBuffer& samples, std::int64_t first, std::int32_t count) noexcept {
    std::int32_t sum = 0;
    for (std::int64_t index = first; index < first + count; ++index)
        // Deliberate: the highest index counts as silence, as all beyond it do.
        if (index < SampleBuffer::highestIndex)
            sum += samples[static_cast<std::size_t>(index)];
    return std::clamp(static_cast<double>(sum) / count / scale, -1.0, 1.0);
}

} // namespace

std::vector<POINT> amplitudeCurve(const SampleBuffer& samples, SIZE size,
                                  const std::function<void()>& beforeColumn) {
    if (size.cx <= 0 || size.cy <= 0)
        return {};
    const std::int32_t middle = size.cy / 2;
    // If there are more columns than samples, each column still takes one sample.
    const std::int32_t step = std::max<std::int32_t>(SampleBuffer::highestIndex / size.cx, 1);

    std::vector<POINT> corners;
    corners.reserve(static_cast<std::size_t>(size.cx) + 4);
    corners.push_back({0, middle});
    std::int64_t position = 0;
    for (std::int32_t column = 0; column <= size.cx; ++column, position += step) {
        beforeColumn();
        const double y = (middle - 2) * average(samples, position, step) + middle;
        // Twice the column is deliberate: hosts chose their control's width by this picture.
        corners.push_back({2 * column, roundToInt32(y)});
    }
    corners.push_back({size.cx + 1, middle});
    corners.push_back({size.cx + 2, middle});
    return corners;
}

} // namespace corvina
