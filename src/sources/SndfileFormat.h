#pragma once

// The record in which libsndfile describes a file, and the names of what stands in it.

#include <cstdint>

namespace corvina {

// The library's SF_INFO.
struct SndfileInfo {
    std::uint32_t framesLow;
    std::int32_t framesHigh;
    std::int32_t sampleRate;
    std::int32_t channels;
    std::int32_t format;
    std::int32_t sections;
    std::int32_t seekable;
    std::int32_t padding; // to the alignment of its 64-bit member
};
static_assert(sizeof(SndfileInfo) == 32);

// How the samples of a file are stored: the low half of its format.
namespace SndfileSubtype {
inline constexpr std::int32_t mask = 0xFFFF;
inline constexpr std::int32_t pcmS8 = 1; // signed
inline constexpr std::int32_t pcm16 = 2;
inline constexpr std::int32_t pcm24 = 3;
inline constexpr std::int32_t pcm32 = 4;
inline constexpr std::int32_t pcmU8 = 5; // unsigned
inline constexpr std::int32_t float32 = 6;
inline constexpr std::int32_t float64 = 7;
inline constexpr std::int32_t voxAdpcm = 0x21;
} // namespace SndfileSubtype

} // namespace corvina
