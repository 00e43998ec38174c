#pragma once

// Lists the wave devices. The two functions test the direction differently, on purpose: for a value
// that is neither input nor output the one counts outputs and the other describes inputs. Both are
// published that way, and a host that passes 0 gets what it always got.

#include "platform/WaveApi.h"

#include <cstdint>
#include <string>

namespace corvina {

struct AudioDevice {
    std::wstring name;
    std::wstring driverVersion; // a decimal number
    std::int16_t channels = 0;
    std::int32_t formats = 0; // set of WAVE_FORMAT_ bits
};

namespace AudioDirection {
inline constexpr std::int32_t input = 1;
inline constexpr std::int32_t output = 2;
} // namespace AudioDirection

[[nodiscard]] std::int32_t countAudioDevices(const WaveApi& wave, std::int32_t direction);

// Returns the device result. A failed query describes a device without name, channels and formats.
// A name that fills its field to the last character raises Invalid procedure call.
std::int32_t describeAudioDevice(const WaveApi& wave, std::int32_t index, std::int32_t direction,
                                 AudioDevice& device);

} // namespace corvina
