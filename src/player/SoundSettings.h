#pragma once

// How the sound is changed on its way to the device.

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvina {

struct SoundSettings {
    static constexpr std::size_t bands = 10;

    std::int32_t volume = 100; // 0 to 100; the amplitude is its square
    std::int32_t balance = 0;  // -100 (left alone) to 100 (right alone)
    bool mute = false;
    std::array<float, bands> bandGains{}; // decibels, -12 to 12

    bool operator==(const SoundSettings&) const = default;
};

} // namespace corvina
