#include "sources/StereoMixer.h"

#include "runtime/Rounding.h"

#include <algorithm>

namespace corvina {

void StereoMixer::apply(const std::int16_t* from, std::int16_t* to, std::size_t frames) const {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        double left = 0;
        double right = 0;
        for (const StereoWeights& weight : weights_) {
            left += weight.left * *from;
            right += weight.right * *from;
            ++from;
        }
        // The weights add up to 1, but for their own rounding.
        *to++ = roundWithinInt16(static_cast<float>(std::clamp(left, -32768.0, 32767.0)));
        *to++ = roundWithinInt16(static_cast<float>(std::clamp(right, -32768.0, 32767.0)));
    }
}

} // namespace corvina
