#pragma once

// Where the sound of an MP4 file ends. A file's pictures, or its header, may go on for longer; a
// system's decoder that is sent behind the end of the sound has nothing to deliver, and Wine's then
// ends the process.

#include <optional>
#include <string>

namespace corvina {

// In seconds, by the headers of the first track of sound. Nothing for other files, and for sound
// whose length the headers do not say.
[[nodiscard]] std::optional<double> mp4SoundEnd(const std::wstring& path);

} // namespace corvina
