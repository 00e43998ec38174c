#pragma once

// The messages of the control's own error numbers.

#include <cstdint>
#include <string>

namespace corvina {

namespace PlayerError {
inline constexpr std::int32_t cannotOpen = -101;
inline constexpr std::int32_t notAudio = -102;
inline constexpr std::int32_t alreadyPlaying = -201;
inline constexpr std::int32_t alreadyRecording = -202; // recording itself is not built
} // namespace PlayerError

// Empty for any other number, the device results among them.
[[nodiscard]] std::wstring errorText(std::int32_t number);

} // namespace corvina
