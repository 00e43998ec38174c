#include "stream/StereoMix.h"

#include <algorithm>
#include <array>
#include <windows.h>

#include <mmreg.h>

#include <ks.h>
#include <ksmedia.h>

namespace corvina {
namespace {

constexpr double minus3dB = 0.70710678118654752440;

StereoWeights weightsOf(std::uint32_t speaker) {
    switch (speaker) {
    case SPEAKER_FRONT_LEFT:
    case SPEAKER_FRONT_LEFT_OF_CENTER:
        return {.left = 1, .right = 0};
    case SPEAKER_FRONT_RIGHT:
    case SPEAKER_FRONT_RIGHT_OF_CENTER:
        return {.left = 0, .right = 1};
    case SPEAKER_LOW_FREQUENCY:
        return {};
    case SPEAKER_BACK_LEFT:
    case SPEAKER_SIDE_LEFT:
    case SPEAKER_TOP_FRONT_LEFT:
    case SPEAKER_TOP_BACK_LEFT:
        return {.left = minus3dB, .right = 0};
    case SPEAKER_BACK_RIGHT:
    case SPEAKER_SIDE_RIGHT:
    case SPEAKER_TOP_FRONT_RIGHT:
    case SPEAKER_TOP_BACK_RIGHT:
        return {.left = 0, .right = minus3dB};
    case SPEAKER_BACK_CENTER:
        return {.left = minus3dB * minus3dB, .right = minus3dB * minus3dB};
    default: // in the middle, or nowhere in particular
        return {.left = minus3dB, .right = minus3dB};
    }
}

std::uint32_t usualMask(std::int32_t channels) {
    constexpr std::uint32_t stereo = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT;
    constexpr std::uint32_t back = SPEAKER_BACK_LEFT | SPEAKER_BACK_RIGHT;
    constexpr std::uint32_t side = SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT;
    constexpr std::uint32_t center = SPEAKER_FRONT_CENTER;
    constexpr std::uint32_t low = SPEAKER_LOW_FREQUENCY;
    constexpr std::array<std::uint32_t, 9> masks = {0,
                                                    center,
                                                    stereo,
                                                    stereo | center,
                                                    stereo | back,
                                                    stereo | center | back,
                                                    stereo | center | low | back,
                                                    stereo | center | low | SPEAKER_BACK_CENTER |
                                                        side,
                                                    stereo | center | low | back | side};
    const auto index = static_cast<std::size_t>(channels);
    return index < masks.size() ? masks[index] : masks.back();
}

} // namespace

std::vector<StereoWeights> stereoMix(std::int32_t channels, std::uint32_t mask) {
    std::uint32_t left = mask != 0 ? mask : usualMask(channels);
    std::vector<StereoWeights> weights;
    double loudest = 0;
    StereoWeights sum;
    for (std::int32_t channel = 0; channel < channels; ++channel) {
        const std::uint32_t speaker = left & (~left + 1); // the lowest bit; 0 once none is left
        left &= ~speaker;
        weights.push_back(weightsOf(speaker));
        sum.left += weights.back().left;
        sum.right += weights.back().right;
    }
    loudest = std::max(sum.left, sum.right);
    if (loudest > 1)
        for (StereoWeights& weight : weights) {
            weight.left /= loudest;
            weight.right /= loudest;
        }
    return weights;
}

} // namespace corvina
