#include "sources/StereoMix.h"

#include "runtime/Rounding.h"

#include <algorithm>

#include <mmreg.h>

#include <ksmedia.h>

namespace corvina {
namespace {

constexpr float sideLevel = 0.70710678F;

constexpr DWORD leftSide = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_LEFT_OF_CENTER;
constexpr DWORD rightSide = SPEAKER_FRONT_RIGHT | SPEAKER_FRONT_RIGHT_OF_CENTER;
constexpr DWORD leftBehind =
    SPEAKER_BACK_LEFT | SPEAKER_SIDE_LEFT | SPEAKER_TOP_FRONT_LEFT | SPEAKER_TOP_BACK_LEFT;
constexpr DWORD rightBehind =
    SPEAKER_BACK_RIGHT | SPEAKER_SIDE_RIGHT | SPEAKER_TOP_FRONT_RIGHT | SPEAKER_TOP_BACK_RIGHT;

// Without a mask, of 1 to 8 channels.
constexpr DWORD usualMasks[] = {
    KSAUDIO_SPEAKER_MONO,
    KSAUDIO_SPEAKER_STEREO,
    SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT | SPEAKER_FRONT_CENTER,
    KSAUDIO_SPEAKER_QUAD,
    KSAUDIO_SPEAKER_QUAD | SPEAKER_FRONT_CENTER,
    KSAUDIO_SPEAKER_5POINT1,
    SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT | SPEAKER_FRONT_CENTER | SPEAKER_LOW_FREQUENCY |
        SPEAKER_BACK_CENTER | SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT,
    KSAUDIO_SPEAKER_7POINT1_SURROUND,
};

} // namespace

StereoMix::StereoMix(const std::vector<DWORD>& speakers) {
    float left = 0;
    float right = 0;
    for (const DWORD speaker : speakers) {
        shares_.push_back(shareOf(speaker));
        left += shares_.back().left;
        right += shares_.back().right;
    }
    const float loudest = std::max({left, right, 1.0F});
    for (Share& share : shares_) {
        share.left /= loudest;
        share.right /= loudest;
    }
}

std::vector<DWORD> StereoMix::speakersOf(std::size_t channels, DWORD mask) {
    if (mask == 0 && channels >= 1 && channels <= std::size(usualMasks))
        mask = usualMasks[channels - 1];
    std::vector<DWORD> speakers;
    for (DWORD bit = 1; bit != 0 && speakers.size() < channels; bit <<= 1)
        if (mask & bit)
            speakers.push_back(bit);
    speakers.resize(channels);
    return speakers;
}

StereoMix::Share StereoMix::shareOf(DWORD speaker) {
    if (speaker & SPEAKER_LOW_FREQUENCY)
        return {};
    if (speaker & leftSide)
        return {1, 0};
    if (speaker & rightSide)
        return {0, 1};
    if (speaker & leftBehind)
        return {sideLevel, 0};
    if (speaker & rightBehind)
        return {0, sideLevel};
    if (speaker & SPEAKER_BACK_CENTER)
        return {sideLevel * sideLevel, sideLevel * sideLevel};
    return {sideLevel, sideLevel};
}

void StereoMix::apply(const std::int16_t* from, std::int16_t* to, std::size_t frames) const {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        float left = 0;
        float right = 0;
        for (const Share& share : shares_) {
            left += share.left * static_cast<float>(*from);
            right += share.right * static_cast<float>(*from);
            ++from;
        }
        // The shares add up to 1, but for the rounding of floats.
        *to++ = roundWithinInt16(std::clamp(left, -32768.0F, 32767.0F));
        *to++ = roundWithinInt16(std::clamp(right, -32768.0F, 32767.0F));
    }
}

} // namespace corvina
