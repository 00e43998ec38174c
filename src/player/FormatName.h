#pragma once

#include <string>

namespace corvina {

class cSoundSTRM;

// The format of an opened file in words, by its extension and, for WAV files, by what they hold.
[[nodiscard]] std::wstring formatName(const std::wstring& file, cSoundSTRM& source);

} // namespace corvina
