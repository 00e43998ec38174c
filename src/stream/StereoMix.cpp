#include "stream/StereoMix.h"

#include <algorithm>
#include <array>

#include <mmreg.h>

#include <ks.h>
#include <ksmedia.h>

namespace corvina {
namespace {

constexpr double minus3dB = 0.70710678118654752440;

StereoWeights weightsOf(DWORD speaker) {
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

DWORD usualMask(std::int32_t channels) {
    constexpr DWORD stereo = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT;
    constexpr DWORD back = SPEAKER_BACK_LEFT | SPEAKER_BACK_RIGHT;
    constexpr DWORD side = SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT;
    constexpr DWORD center = SPEAKER_FRONT_CENTER;
    constexpr DWORD low = SPEAKER_LOW_FREQUENCY;
    constexpr std::array<DWORD, 9> masks = {0,
                                            center,
                                            stereo,
                                            stereo | center,
                                            stereo | back,
                                            stereo | center | back,
                                            stereo | center | low | back,
                                            stereo | center | low | SPEAKER_BACK_CENTER | side,
                                            stereo | center | low | back | side};
    const auto index = static_cast<std::size_t>(channels);
    return index < masks.size() ? masks[index] : masks.back();
}

} // namespace

std::vector<DWORD> speakersOf(std::int32_t channels, DWORD mask) {
    DWORD left = mask != 0 ? mask : usualMask(channels);
    std::vector<DWORD> speakers;
    for (std::int32_t channel = 0; channel < channels; ++channel) {
        const DWORD speaker = left & (~left + 1); // the lowest bit; 0 once none is left
        left &= ~speaker;
        speakers.push_back(speaker);
    }
    return speakers;
}

std::vector<StereoWeights> stereoWeights(const std::vector<DWORD>& speakers) {
    std::vector<StereoWeights> weights;
    StereoWeights sum;
    for (const DWORD speaker : speakers) {
        weights.push_back(weightsOf(speaker));
        sum.left += weights.back().left;
        sum.right += weights.back().right;
    }
    const double loudest = std::max({sum.left, sum.right, 1.0});
    for (StereoWeights& weight : weights) {
        weight.left /= loudest;
        weight.right /= loudest;
    }
    return weights;
}

} // namespace corvina
